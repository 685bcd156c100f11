import QtQuick
import Corvane

/// The medium of a message: a picture, or a card for any other file. A picture's height is fixed and its width follows
/// its ratio, so that nothing jumps when it has been read.
Item {
    id: media

    required property Item item
    required property int maximumWidth

    readonly property bool here: item.mediaState === "ready"
    readonly property bool voice: item.mediaKind === "audio" && here
    readonly property bool sticker: item.mediaKind === "sticker"
    readonly property bool pictorial: (item.mediaKind === "image" || sticker) && here
    readonly property bool broken: photo.problem !== ""
    readonly property bool picture: pictorial && !broken
    readonly property string stateText: broken ? photo.problem : item.mediaStateText
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
        path: media.pictorial ? media.item.mediaPath : ""
        TapHandler { onTapped: media.item.inbox.messageActions.openMedia(media.item.id) }
        HoverHandler { cursorShape: Qt.PointingHandCursor }
    }
    Rectangle {
        anchors.fill: parent
        visible: !media.picture && !media.voice
        radius: Theme.controlRadius
        color: media.item.outgoing ? Theme.surface : Theme.raised

        Icon {
            id: sign
            x: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            size: 20
            name: ["image", "video", "audio"].includes(media.item.mediaKind) ? media.item.mediaKind : "document"
        }
        Column {
            id: words
            anchors.left: sign.right
            anchors.leftMargin: Theme.medium
            anchors.right: press.visible || media.item.mediaState === "downloading" ? press.left : parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2
            Label {
                width: parent.width
                text: media.item.mediaTitle
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
                color: media.broken || ["failed", "missing", "refused"].includes(media.item.mediaState) ? Theme.bad : Theme.faint
                Accessible.ignored: true
            }
        }
        IconButton {
            id: press
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            visible: ["ready", "download", "failed"].includes(media.item.mediaState) && !media.broken
            focusPolicy: Qt.NoFocus
            icon.name: media.here ? "document-open" : media.item.mediaState === "failed" ? "view-refresh" : "download"
            text: media.here ? qsTr("Open %1").arg(media.item.mediaTitle)
                : media.item.mediaState === "failed" ? qsTr("Try again") : qsTr("Download")
            onClicked: {
                if (media.here)
                    media.item.inbox.messageActions.openMedia(media.item.id);
                else
                    media.item.thread.fetchMedia(media.item.id);
            }
        }
    }
    Loader {
        id: playback
        anchors.fill: parent
        active: media.voice
        sourceComponent: VoicePlayback { item: media.item }
    }
}
