import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What can be done with all picked rows at once.
Rectangle {
    id: bar

    required property InboxView inbox

    implicitHeight: inbox.bulk.active ? Theme.bar : 0
    visible: height > 0
    clip: true
    color: Theme.surface
    Behavior on implicitHeight { NumberAnimation { duration: Theme.pane; easing.type: Easing.OutCubic } }

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Label {
        x: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        text: bar.inbox.bulk.text
        font.weight: Theme.strong
    }
    Row {
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter

        IconButton {
            objectName: "bulk.read"
            icon.name: "mail-mark-read"
            text: qsTr("Mark as read")
            onClicked: bar.inbox.markCheckedRead()
        }
        IconButton {
            objectName: "bulk.mute"
            icon.name: "notifications-disabled"
            text: qsTr("Mute or unmute")
            key: Commands.keysOf("mute")
            onClicked: bar.inbox.muteChecked()
        }
        IconButton {
            objectName: "bulk.archive"
            icon.name: bar.inbox.unarchives ? "mail-unarchive" : "mail-archive"
            text: bar.inbox.archiveLabel
            key: Commands.keysOf("archive")
            onClicked: bar.inbox.archiveChecked()
        }
        IconButton {
            objectName: "bulk.clear"
            icon.name: "window-close"
            text: qsTr("Pick none")
            key: Commands.keysOf("back")
            onClicked: bar.inbox.bulk.clear()
        }
    }
}
