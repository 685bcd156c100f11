import QtQuick
import Corvane.Controls
import Corvane.Work

/// Something that happened: when, what, and its words, folded after six lines.
Item {
    id: line

    required property workEvent event
    property bool dated ///< shows the day beside the time
    property bool open
    property bool hasBrowser ///< saved pages can be opened and replayed

    signal reportOpened
    signal stepsPlayed

    implicitHeight: Math.max(time.implicitHeight, body.implicitHeight) + Theme.medium
    Accessible.role: Accessible.ListItem
    Accessible.name: event.aloud

    Label {
        id: time
        width: 56
        text: line.event.time
        font.pixelSize: Theme.meta
        color: Theme.faint
        Accessible.ignored: true
    }
    Rectangle {
        x: 60
        y: 2
        width: 22
        height: 22
        radius: 11
        color: Theme.raised
        Icon {
            anchors.centerIn: parent
            size: 13
            name: line.event.icon
            color: line.event.label === "decision" ? Theme.accent : Theme.soft
        }
    }
    Column {
        id: body
        x: 92
        width: parent.width - x
        spacing: 2
        Label {
            width: parent.width
            text: line.event.title
            wrapMode: Text.Wrap
            maximumLineCount: 2
            font.weight: Theme.strong
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: line.dated
            text: line.event.day
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            id: words
            width: parent.width
            visible: text !== ""
            text: line.event.detail
            wrapMode: Text.Wrap
            maximumLineCount: line.open ? 500 : 6
            color: Theme.soft
            Accessible.ignored: true
        }
        Button {
            visible: words.truncated || line.open
            implicitHeight: 24
            leftPadding: 0
            kind: "quiet"
            text: line.open ? qsTr("Show less") : qsTr("Show all")
            onClicked: line.open = !line.open
        }
        Row {
            visible: line.hasBrowser && line.event.capture !== ""
            topPadding: Theme.tight
            spacing: Theme.small
            Button {
                objectName: "event.report"
                implicitHeight: 28
                text: qsTr("Open the report")
                onClicked: line.reportOpened()
            }
            Button {
                objectName: "event.play"
                implicitHeight: 28
                kind: "quiet"
                text: qsTr("Play the steps")
                onClicked: line.stepsPlayed()
            }
        }
    }
}
