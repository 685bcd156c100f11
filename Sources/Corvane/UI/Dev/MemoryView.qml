import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// Knowledge about the project, and a draft of the next proposal.
FocusScope {
    id: view

    required property DevMemory memory
    property choice noTemplate

    Binding { target: draft; property: "text"; value: view.memory.draft }

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: Math.min(parent.width - Theme.wide * 2, 760)
        spacing: Theme.small

        Row {
            spacing: Theme.tight
            Repeater {
                model: view.memory.templates.length
                Chip {
                    required property int index
                    readonly property choice entry: view.memory.templates[index] ?? view.noTemplate
                    objectName: "dev.template:" + entry.id
                    text: entry.label
                    onClicked: view.memory.stageMemoryDraft(entry.id)
                }
            }
            Chip {
                objectName: "dev.transcriptMemory"
                enabled: view.memory.hasTerminal
                text: qsTr("What the terminal shows")
                onClicked: view.memory.saveTerminalTranscriptMemory()
            }
        }
        TextBox {
            id: draft
            objectName: "dev.memoryDraft"
            width: parent.width
            focus: true
            placeholderText: qsTr("Write down what others should know")
            minimumLines: 2
            maximumLines: 8
            onTextChanged: if (editing) view.memory.draft = text
            onSubmitted: view.memory.proposeMemory()
        }
        Item {
            width: parent.width
            height: propose.height
            Label {
                anchors.verticalCenter: parent.verticalCenter
                width: propose.x - Theme.medium
                wrapMode: Text.Wrap
                text: view.memory.rule
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
            Button {
                id: propose
                objectName: "dev.propose"
                anchors.right: parent.right
                enabled: view.memory.draft.trim() !== ""
                text: qsTr("Propose")
                hint: "Ctrl+Return"
                onClicked: view.memory.proposeMemory()
            }
        }
    }
    DecisionList {
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        withDecisions: false
        decisions: view.memory.rows
        emptyTitle: view.memory.emptyTitle
        emptyText: view.memory.emptyText
    }
}
