import QtQuick
import Corvane.Controls
import Corvane.Work

/// A decision: what is proposed and why, and the two answers while it waits.
Card {
    id: card

    required property workDecision decision
    property bool asking

    signal decided(approve: bool)

    padding: Theme.medium
    Accessible.role: Accessible.ListItem
    Accessible.name: decision.title + ", " + decision.status

    Item {
        width: parent.width
        height: title.implicitHeight
        Label {
            id: title
            width: parent.width - condition.implicitWidth - Theme.medium
            wrapMode: Text.Wrap
            maximumLineCount: 3
            text: card.decision.title
            font.weight: Theme.strong
        }
        Label {
            id: condition
            anchors.right: parent.right
            text: card.decision.status
            font.pixelSize: Theme.meta
            color: card.decision.waits ? Theme.warn : Theme.soft
        }
    }
    Label {
        width: parent.width
        wrapMode: Text.Wrap
        text: card.decision.proposal
        color: Theme.soft
    }
    Label {
        width: parent.width
        visible: text !== "" && card.decision.waits
        wrapMode: Text.Wrap
        text: card.decision.rationale
        font.pixelSize: Theme.meta
        color: Theme.faint
    }
    Label {
        width: parent.width
        visible: text !== ""
        text: card.decision.facts
        font.pixelSize: Theme.meta
        color: Theme.faint
    }
    Label {
        width: parent.width
        visible: card.asking
        wrapMode: Text.Wrap
        text: card.decision.question
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Row {
        visible: card.decision.waits
        spacing: Theme.small
        Button {
            objectName: "decision.approve:" + card.decision.title
            kind: card.asking ? "primary" : "plain"
            text: qsTr("Approve")
            onClicked: {
                if (card.decision.question !== "" && !card.asking) {
                    card.asking = true;
                } else {
                    card.asking = false;
                    card.decided(true);
                }
            }
        }
        Button {
            objectName: "decision.reject:" + card.decision.title
            visible: !card.asking
            kind: "quiet"
            text: qsTr("Reject")
            onClicked: card.decided(false)
        }
        Button {
            visible: card.asking
            kind: "quiet"
            text: qsTr("Not yet")
            onClicked: card.asking = false
        }
    }
}
