import QtQuick
import Corvane

/// One message: its medium, its text, and, at the end of a run, its time and how far it got.
Rectangle {
    id: bubble

    required property Item item
    required property int maximumWidth

    readonly property bool bare: item.mediaKind === "sticker" && item.mediaState === "ready"
    /// The card of a file says the words already.
    readonly property bool saidByCard: item.mediaKind !== "" && item.body === item.mediaTitle
        && !(["image", "sticker"].includes(item.mediaKind) && item.mediaState === "ready")
    readonly property bool timed: item.showTime
    /// Text from right to left ends where the time stands, so the time gets a line of its own.
    readonly property bool rightToLeft: /[\u0590-\u08ff]/.test(item.body)
    readonly property int padding: Theme.medium

    implicitWidth: Math.max(content.implicitWidth + padding * 2, timed ? stamp.width + padding * 2 : 0)
    implicitHeight: content.implicitHeight + 16 + (stampBelow ? stamp.height + 2 : 0)
    readonly property bool stampBelow: timed && (rightToLeft || !text.visible)
    radius: Theme.bubbleRadius
    color: bare ? Theme.none : item.outgoing ? Theme.tint : Theme.surface
    border.width: bare || item.outgoing ? 0 : 1
    border.color: Theme.line

    Rectangle {
        anchors.fill: parent
        anchors.margins: -3
        visible: bubble.item.ringed || bubble.item.highlighted
        radius: parent.radius + 3
        color: Theme.none
        border.width: 2
        border.color: Theme.accent
        opacity: bubble.item.ringed ? 1 : 0.6
    }
    Column {
        id: content
        x: bubble.padding
        y: 8
        spacing: 6

        Loader {
            active: bubble.item.mediaKind !== ""
            visible: active
            sourceComponent: Media {
                item: bubble.item
                maximumWidth: bubble.maximumWidth - bubble.padding * 2
            }
        }
        Text {
            id: text
            visible: bubble.item.body !== "" && !bubble.saidByCard
            width: Math.min(Math.ceil(measure.implicitWidth), bubble.maximumWidth - bubble.padding * 2)
            wrapMode: Text.Wrap
            lineHeight: 1.2
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.body
            // Unbreakable blanks at the end keep the last line clear of the time.
            text: bubble.item.body + (bubble.timed && !bubble.rightToLeft ? " " + "\u00a0".repeat(Math.ceil(stamp.width / 3.6) + 2) : "")
            Accessible.ignored: true
        }
        Button {
            visible: bubble.item.moreText !== ""
            implicitHeight: 28
            kind: "quiet"
            text: bubble.item.moreText
            onClicked: bubble.item.thread.showMore(bubble.item.id)
        }
        Label {
            visible: bubble.item.transcript !== ""
            width: Math.min(implicitWidth, bubble.maximumWidth - bubble.padding * 2)
            wrapMode: Text.Wrap
            lineHeight: 1.2
            text: bubble.item.transcript
            color: Theme.soft
            Accessible.ignored: true
        }
    }
    Text {
        id: measure
        visible: false
        textFormat: Text.PlainText
        font: text.font
        text: text.text
    }
    Row {
        id: stamp
        visible: bubble.timed
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 8
        spacing: 3

        Label {
            text: bubble.item.timeText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            visible: bubble.item.ticks === "word"
            text: bubble.item.ticksText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Ticks {
            anchors.verticalCenter: parent.verticalCenter
            size: 14
            ticks: bubble.item.ticks
        }
        HoverHandler { id: overTicks }
    }
    Tooltip {
        text: bubble.item.ticksHelp || bubble.item.ticksText
        shown: overTicks.hovered && bubble.item.ticks !== ""
    }
    Rectangle {
        visible: bubble.item.reaction !== ""
        x: bubble.item.outgoing ? -6 : parent.width - width + 6
        y: parent.height - 10
        width: mood.implicitWidth + 12
        height: 22
        radius: 11
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Label {
            id: mood
            anchors.centerIn: parent
            text: bubble.item.reaction
            font.family: Theme.pictures
            font.pixelSize: Theme.body
            Accessible.ignored: true
        }
    }
}
