import QtQuick
import QtQuick.Window
import Corvane

/// The medium of a message: a picture in its own ratio, or a card for any other file. The frame stands before
/// the picture has been read, so that nothing jumps.
Item {
    id: media

    required property Item item
    required property int maximumWidth

    readonly property bool picture: ["image", "sticker"].includes(item.mediaKind) && item.mediaState === "ready"
        && natural.width > 0 && natural.height > 0
    readonly property size natural: item.mediaPath ? WindowTools.pictureSize(item.mediaPath) : Qt.size(0, 0)
    readonly property real longest: item.mediaKind === "sticker" ? 128 : 320
    readonly property real scale: Math.min(1, longest / natural.width, longest / natural.height, maximumWidth / natural.width)

    implicitWidth: picture ? Math.max(48, Math.round(natural.width * scale)) : Math.min(maximumWidth, 320)
    implicitHeight: picture ? Math.max(48, Math.round(natural.height * scale)) : Math.max(52, words.implicitHeight + Theme.large)

    Rectangle {
        anchors.fill: parent
        visible: media.picture && photo.status !== Image.Ready && media.item.mediaKind === "image"
        radius: Theme.controlRadius
        color: Theme.raised
    }
    Image {
        id: photo
        objectName: "media.photo"
        anchors.fill: parent
        visible: media.picture
        asynchronous: true
        sourceSize: Qt.size(media.implicitWidth * Screen.devicePixelRatio, media.implicitHeight * Screen.devicePixelRatio)
        source: media.picture ? "image://photo/" + Theme.controlRadius + "/" + encodeURIComponent(media.item.mediaPath) : ""
        TapHandler { onTapped: WindowTools.open(media.item.mediaPath) }
        HoverHandler { cursorShape: Qt.PointingHandCursor }
    }
    Rectangle {
        anchors.fill: parent
        visible: !media.picture
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
            anchors.right: press.visible ? press.left : parent.right
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
                text: media.item.mediaStateText
                font.pixelSize: Theme.meta
                color: media.item.mediaState === "failed" || media.item.mediaState === "missing" ? Theme.bad : Theme.faint
                Accessible.ignored: true
            }
        }
        IconButton {
            id: press
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            visible: ["ready", "download", "failed"].includes(media.item.mediaState)
            focusPolicy: Qt.NoFocus
            icon.name: media.item.mediaState === "ready" ? "document-open" : media.item.mediaState === "failed" ? "view-refresh" : "download"
            text: media.item.mediaState === "ready" ? qsTr("Open %1").arg(media.item.mediaTitle)
                : media.item.mediaState === "failed" ? qsTr("Try again") : qsTr("Download")
            onClicked: {
                if (media.item.mediaState === "ready")
                    WindowTools.open(media.item.mediaPath);
                else
                    media.item.thread.fetchMedia(media.item.id);
            }
        }
    }
}
