import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The medium of a message: a picture, or a card for any other file. A picture's height is fixed and its width follows
/// its ratio, so that nothing jumps when it has been read.
Item {
    id: media

    required property threadRow message
    required property OpenPerson person
    required property int maximumWidth

    readonly property bool here: message.mediaState === "ready"
    readonly property bool voice: message.mediaKind === "audio" && here
    readonly property bool sticker: message.mediaKind === "sticker"
    readonly property bool pictorial: (message.mediaKind === "image" || sticker) && here
    readonly property bool broken: photo.problem !== ""
    readonly property bool picture: pictorial && !broken
    readonly property string stateText: broken ? photo.problem : message.mediaStateText
    readonly property int pictureHeight: sticker ? 128 : 240
    readonly property int pictureWidth: photo.ready ? photo.implicitWidth : sticker ? 128 : 320
    readonly property size card: Qt.size(Math.min(maximumWidth, 320), Math.max(52, words.implicitHeight + Theme.large))

    implicitWidth: picture ? Math.min(maximumWidth, pictureWidth) : card.width
    implicitHeight: pictorial ? Math.max(pictureHeight, broken ? card.height : 0)
        : voice ? playback.implicitHeight : card.height

    Rectangle {
        anchors.fill: parent
        visible: media.picture && !media.sticker
        radius: Theme.controlRadius
        color: Theme.raised
    }
    Photo {
        id: photo
        objectName: "media.photo"
        anchors.fill: parent
        visible: media.picture
        radius: Theme.controlRadius
        leastWidth: media.sticker ? 64 : 140
        mostWidth: media.sticker ? 160 : 480
        path: media.pictorial ? media.message.mediaPath : ""
        TapHandler { onTapped: media.person.messageActions.openMedia(media.message.id) }
        HoverHandler { cursorShape: Qt.PointingHandCursor }
    }
    Rectangle {
        anchors.fill: parent
        visible: !media.picture && !media.voice
        radius: Theme.controlRadius
        color: media.message.outgoing ? Theme.surface : Theme.raised

        Icon {
            id: sign
            x: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            size: 20
            name: ["image", "video", "audio"].includes(media.message.mediaKind) ? media.message.mediaKind : "document"
        }
        Column {
            id: words
            anchors.left: sign.right
            anchors.leftMargin: Theme.medium
            anchors.right: press.visible || media.message.mediaState === "downloading" ? press.left : parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2
            Label {
                width: parent.width
                text: media.message.mediaTitle
                wrapMode: Text.Wrap
                maximumLineCount: 6
                Accessible.ignored: true
            }
            Label {
                width: parent.width
                visible: text !== ""
                text: media.stateText
                wrapMode: Text.Wrap
                font.pixelSize: Theme.meta
                color: media.broken || ["failed", "missing", "refused"].includes(media.message.mediaState) ? Theme.bad : Theme.faint
                Accessible.ignored: true
            }
        }
        IconButton {
            id: press
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            visible: ["ready", "download", "failed"].includes(media.message.mediaState) && !media.broken
            focusPolicy: Qt.NoFocus
            icon.name: media.here ? "document-open" : media.message.mediaState === "failed" ? "view-refresh" : "download"
            text: media.here ? qsTr("Open %1").arg(media.message.mediaTitle)
                : media.message.mediaState === "failed" ? qsTr("Try again") : qsTr("Download")
            onClicked: {
                if (media.here)
                    media.person.messageActions.openMedia(media.message.id);
                else
                    media.person.messageActions.fetchMedia(media.message.id);
            }
        }
    }
    Loader {
        id: playback
        anchors.fill: parent
        active: media.voice
        sourceComponent: VoicePlayback {
            message: media.message
            player: media.person.voicePlayer
        }
    }
}
