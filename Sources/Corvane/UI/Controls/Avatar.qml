import Corvane.Controls
import QtQuick

/// A person's photo, or their initials on a hue that belongs to them, with the channel's mark at the corner.
Item {
    id: avatar

    property string initials
    property string photo ///< a file path, or empty
    property string channel ///< such as "WHATSAPP", or empty for no mark
    property bool group: false
    property color ground: Theme.surface ///< the background around the mark
    property int hue: 0 ///< 0 to 359

    implicitWidth: 40
    implicitHeight: width
    Accessible.ignored: true

    Rectangle {
        anchors.fill: parent
        visible: !picture.ready
        radius: width / 2
        color: Theme.avatarGround(avatar.hue / 360)

        Label {
            anchors.centerIn: parent
            visible: !avatar.group || avatar.initials !== ""
            text: avatar.initials
            color: Theme.avatarText(avatar.hue / 360)
            font.pixelSize: Math.round(avatar.width * 0.36)
            font.weight: Theme.strong
        }
        Icon {
            anchors.centerIn: parent
            visible: avatar.group && avatar.initials === ""
            name: visible ? "system-users" : ""
            size: Math.round(avatar.width * 0.5)
            color: Theme.avatarText(avatar.hue / 360)
        }
    }
    Photo {
        id: picture
        anchors.fill: parent
        radius: width / 2
        path: avatar.photo
    }
    Rectangle {
        visible: avatar.channel !== ""
        x: parent.width - width + 4
        y: parent.height - height + 4
        width: Math.round(avatar.width * 0.3) + 8
        height: width
        radius: width / 2
        color: avatar.ground

        Rectangle {
            anchors.centerIn: parent
            width: parent.width - 3
            height: width
            radius: width / 2
            color: Theme.raised
            ChannelMark {
                anchors.centerIn: parent
                channel: avatar.channel
                size: parent.width - 5
            }
        }
    }
}
