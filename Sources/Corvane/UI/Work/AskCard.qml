import QtQuick
import Corvane.Controls
import Corvane.Work

/// A question, its answer where there is one, and the way to answer it.
Card {
    id: card

    required property opsAsk ask

    signal answerPressed

    padding: Theme.medium
    Accessible.role: Accessible.ListItem
    Accessible.name: ask.aloud

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        maximumLineCount: 8
        text: card.ask.question
        font.weight: card.ask.open ? Theme.strong : Theme.regular
    }
    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        maximumLineCount: 12
        text: card.ask.answer
        color: Theme.soft
    }
    Item {
        width: parent.width
        height: answer.height
        Label {
            id: urgency
            anchors.verticalCenter: parent.verticalCenter
            text: card.ask.urgency ? card.ask.urgency + "  " : ""
            font.pixelSize: Theme.meta
            font.weight: Theme.strong
            color: card.ask.urgent ? Theme.bad : Theme.soft
        }
        Label {
            anchors.left: urgency.right
            anchors.right: answer.left
            anchors.verticalCenter: parent.verticalCenter
            text: card.ask.facts
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        Button {
            id: answer
            objectName: "ask.answer:" + card.ask.question
            anchors.right: parent.right
            implicitHeight: 28
            kind: card.ask.open ? "plain" : "quiet"
            text: card.ask.open ? qsTr("Answer") : qsTr("Answer again")
            onClicked: card.answerPressed()
        }
    }
}
