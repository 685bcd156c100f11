import QtQuick
import QtQuick.Window
import Corvane

/// The medium of a message: a picture in its own ratio, or a card for any other file. The frame stands before
/// the picture has been read, so that nothing jumps.
Item {
    id: media

    required property Item item
    required property int maximumWidth

    readonly property bool here: item.mediaState === "ready"
    readonly property bool voice: item.mediaKind === "audio" && here
    readonly property bool pictorial: ["image", "sticker"].includes(item.mediaKind) && here
    readonly property string problem: pictorial ? item.inbox.messageActions.pictureProblem(item.mediaPath, item.mediaKind) : ""
    readonly property size natural: pictorial && problem === ""
        ? WindowTools.pictureSize(item.mediaPath) : Qt.size(0, 0)
    readonly property bool framed: natural.width > 0 && natural.height > 0
    readonly property bool broken: pictorial && (!framed || photo.status === Image.Error)
    readonly property bool picture: framed && !broken
    readonly property string stateText: broken ? problem || qsTr("This picture can't be shown here.") : item.mediaStateText
    readonly property real longest: item.mediaKind === "sticker" ? 128 : 320
    readonly property real scale: Math.min(1, longest / natural.width, longest / natural.height, maximumWidth / natural.width)

    readonly property size frame: framed ? Qt.size(Math.max(48, Math.round(natural.width * scale)),
        Math.max(48, Math.round(natural.height * scale))) : Qt.size(0, 0)
    readonly property size card: Qt.size(Math.min(maximumWidth, 320), Math.max(52, words.implicitHeight + Theme.large))

    // A picture that turns out to be damaged says so in its frame.
    implicitWidth: picture ? frame.width : Math.max(card.width, frame.width)
    implicitHeight: picture ? frame.height : Math.max(card.height, frame.height)

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
        sourceSize: Qt.size(media.frame.width * Screen.devicePixelRatio, media.frame.height * Screen.devicePixelRatio)
        source: media.framed ? "image://photo/" + Theme.controlRadius + "/" + encodeURIComponent(media.item.mediaPath) : ""
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
                color: media.broken || media.item.mediaState === "failed" || media.item.mediaState === "missing" ? Theme.bad : Theme.faint
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
        anchors.fill: parent
        active: media.voice
        sourceComponent: VoicePlayback { item: media.item }
    }
}
