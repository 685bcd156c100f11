import QtQuick
import Corvane.Controls
import Corvane.Work

/// Knowledge, and the two answers while it is only proposed.
Card {
    id: card

    required property workMemory memory

    signal decided(approve: bool)

    padding: Theme.medium
    Accessible.role: Accessible.ListItem
    Accessible.name: memory.body + ", " + memory.status

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        maximumLineCount: 8
        text: card.memory.body
    }
    Item {
        width: parent.width
        height: Math.max(facts.implicitHeight, answers.visible ? answers.height : 0)
        Label {
            id: facts
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - (answers.visible ? answers.width + Theme.medium : 0)
            text: card.memory.status + " · " + card.memory.facts
            font.pixelSize: Theme.meta
            color: card.memory.waits ? Theme.warn : Theme.faint
        }
        Row {
            id: answers
            anchors.right: parent.right
            visible: card.memory.waits
            spacing: Theme.small
            Button {
                objectName: "memory.reject:" + card.memory.body.slice(0, 20)
                implicitHeight: 28
                kind: "quiet"
                text: qsTr("Reject")
                onClicked: card.decided(false)
            }
            Button {
                objectName: "memory.approve:" + card.memory.body.slice(0, 20)
                implicitHeight: 28
                text: qsTr("Approve")
                onClicked: card.decided(true)
            }
        }
    }
}
