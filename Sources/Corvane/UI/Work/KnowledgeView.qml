import QtQuick
import Corvane.Controls
import Corvane.Work

/// What the assistant may use, and what is proposed.
FocusScope {
    id: view

    required property LumoHub hub

    function keep() {
        if (hub.propose(field.text))
            field.text = "";
    }

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: Math.min(parent.width - Theme.wide * 2, 760)
        spacing: Theme.medium
        PlaceHead {
            width: parent.width
            title: qsTr("Knowledge")
        }
        Item {
            width: parent.width
            height: field.height
            TextBox {
                id: field
                objectName: "knowledge.field"
                width: add.x - Theme.small
                focus: true
                maximumLines: 4
                placeholderText: qsTr("Write down a fact")
                onSubmitted: view.keep()
            }
            Button {
                id: add
                objectName: "knowledge.add"
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                enabled: field.text.trim() !== ""
                text: qsTr("Propose")
                onClicked: view.keep()
            }
        }
        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            text: view.hub.error
            color: Theme.bad
        }
    }
    DecisionList {
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        width: parent.width
        withDecisions: false
        decisions: view.hub.knowledge
        emptyTitle: qsTr("No knowledge yet")
        emptyText: view.hub.knowledgeEmpty
    }
}
