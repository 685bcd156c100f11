import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// One message: its medium, its text, and, at the end of a run, its time and how far it got.
Rectangle {
    id: bubble

    required property threadRow message
    required property OpenPerson person
    required property int maximumWidth
    property bool ringed: false

    readonly property bool bare: message.mediaKind === "sticker" && message.mediaState === "ready"
    /// A file card shows the text itself.
    readonly property bool saidByCard: message.mediaKind !== "" && message.body === message.mediaTitle
        && !(["image", "sticker"].includes(message.mediaKind) && message.mediaState === "ready")
    readonly property bool timed: message.showTime
    /// Right-to-left text ends where the time is, so the time gets its own line.
    readonly property bool rightToLeft: /[\u0590-\u08ff]/.test(message.body)
    readonly property int padding: Theme.medium

    implicitWidth: Math.max(content.implicitWidth + padding * 2, timed ? stamp.width + padding * 2 : 0)
    implicitHeight: content.implicitHeight + 16 + (stampBelow ? stamp.height + 2 : 0)
    readonly property bool stampBelow: timed && (rightToLeft || !text.visible || message.quoteLabel !== "" || message.moreText !== "")
    radius: Theme.bubbleRadius
    color: bare ? Theme.none : message.outgoing ? Theme.tint : Theme.surface
    border.width: bare || message.outgoing ? 0 : 1
    border.color: Theme.line

    Rectangle {
        anchors.fill: parent
        anchors.margins: -3
        visible: bubble.ringed || bubble.message.highlighted
        radius: parent.radius + 3
        color: Theme.none
        border.width: 2
        border.color: Theme.accent
        opacity: bubble.ringed ? 1 : 0.6
    }
    Column {
        id: content
        x: bubble.padding
        y: 8
        spacing: 6

        Loader {
            active: bubble.message.subject !== ""
            visible: active
            sourceComponent: Label {
                width: Math.min(implicitWidth, bubble.maximumWidth - bubble.padding * 2)
                wrapMode: Text.Wrap
                maximumLineCount: 3
                text: bubble.message.subject
                font.weight: Theme.strong
                Accessible.ignored: true
            }
        }
        Loader {
            active: bubble.message.mediaKind !== ""
            visible: active
            sourceComponent: Media {
                message: bubble.message
                person: bubble.person
                maximumWidth: bubble.maximumWidth - bubble.padding * 2
            }
        }
        Text {
            id: text
            visible: bubble.message.body !== "" && !bubble.saidByCard
            width: Math.min(Math.ceil(measure.implicitWidth), bubble.maximumWidth - bubble.padding * 2)
            wrapMode: Text.Wrap
            lineHeight: 1.2
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.body
            // Trailing no-break spaces keep the last line clear of the time.
            text: bubble.message.body + (bubble.timed && !bubble.rightToLeft ? " " + "\u00a0".repeat(Math.ceil(stamp.width / 3.6) + 2) : "")
            Accessible.ignored: true
        }
        Loader {
            active: bubble.message.quoteLabel !== ""
            visible: active
            sourceComponent: Quotation {
                message: bubble.message
                thread: bubble.person.thread
                maximumWidth: bubble.maximumWidth - bubble.padding * 2
            }
        }
        Loader {
            active: bubble.message.moreText !== ""
            visible: active
            sourceComponent: Button {
                implicitHeight: 28
                kind: "quiet"
                text: bubble.message.moreText
                onClicked: bubble.person.thread.showMore(bubble.message.id)
            }
        }
        Label {
            visible: bubble.message.transcript !== ""
            width: Math.min(implicitWidth, bubble.maximumWidth - bubble.padding * 2)
            wrapMode: Text.Wrap
            lineHeight: 1.2
            text: bubble.message.transcript
            color: Theme.soft
            Accessible.ignored: true
        }
        Loader {
            active: bubble.message.transcribeState !== "" || bubble.message.transcript !== ""
            visible: active
            sourceComponent: Transcription {
                message: bubble.message
                person: bubble.person
                maximumWidth: bubble.maximumWidth - bubble.padding * 2
            }
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
            text: bubble.message.timeText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            visible: bubble.message.ticks === "word"
            text: bubble.message.ticksText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Ticks {
            anchors.verticalCenter: parent.verticalCenter
            size: 14
            ticks: bubble.message.ticks
        }
        HoverHandler { id: overTicks }
    }
    Tooltip {
        text: bubble.message.ticksHelp || bubble.message.ticksText
        shown: overTicks.hovered && bubble.message.ticks !== ""
    }
    Rectangle {
        visible: bubble.message.reaction !== ""
        x: bubble.message.outgoing ? -6 : parent.width - width + 6
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
            text: bubble.message.reaction
            font.family: Theme.pictures
            font.pixelSize: Theme.body
            Accessible.ignored: true
        }
    }
}
