import QtQuick
import Corvane.Controls
import Corvane.Work

/// The command that a person reviews and runs.
Card {
    id: card

    required property WorkAgents agents

    SectionHeader { text: qsTr("Review, then run") }
    Label {
        objectName: "agents.command"
        width: parent.width
        wrapMode: Text.WrapAnywhere
        elide: Text.ElideNone
        text: card.agents.command
        font.family: "monospace"
        font.pixelSize: Theme.meta
    }
    Row {
        spacing: Theme.small
        Button {
            objectName: "agents.copy"
            icon.name: "edit-copy"
            text: qsTr("Copy")
            onClicked: WindowTools.copy(card.agents.command)
        }
        Button {
            kind: "quiet"
            text: qsTr("Dismiss")
            onClicked: card.agents.dismissLaunch()
        }
    }
}
