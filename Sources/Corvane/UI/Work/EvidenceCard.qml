import QtQuick
import Corvane.Controls
import Corvane.Work

/// A piece of evidence, or a runbook.
Card {
    id: card

    required property workEvidence evidence
    property bool open

    padding: Theme.medium
    Accessible.role: Accessible.ListItem
    Accessible.name: evidence.title + ", " + evidence.facts

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        maximumLineCount: 2
        text: card.evidence.title
        font.weight: Theme.strong
    }
    Label {
        id: words
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        maximumLineCount: card.open ? 500 : 6
        text: card.evidence.summary
        color: Theme.soft
    }
    Button {
        visible: words.truncated || card.open
        implicitHeight: 24
        leftPadding: 0
        kind: "quiet"
        text: card.open ? qsTr("Show less") : qsTr("Show all")
        onClicked: card.open = !card.open
    }
    Label {
        width: parent.width
        text: card.evidence.facts
        font.pixelSize: Theme.meta
        color: Theme.faint
    }
}
