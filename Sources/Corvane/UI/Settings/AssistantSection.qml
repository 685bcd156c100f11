import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Who answers for the assistant, the local model, what this machine may do, and the memory.
Column {
    id: section

    required property AssistantSettings assistant

    spacing: Theme.large

    Card {
        width: parent.width
        Label {
            width: parent.width
            objectName: "assistant.answers"
            wrapMode: Text.Wrap
            text: section.assistant.answersText
            font.weight: Theme.strong
            color: section.assistant.available ? Theme.text : Theme.warn
        }
        Repeater {
            model: section.assistant.backends
            SettingRow {
                id: backend
                required property assistantBackend modelData
                label: modelData.name
                hint: modelData.detail
                Label {
                    text: backend.modelData.stateText
                    color: backend.modelData.kind === "good" ? Theme.good : Theme.soft
                }
            }
        }
        SettingRow {
            label: qsTr("Ask for one sentence")
            Button {
                objectName: "assistant.try"
                visible: !section.assistant.trying
                enabled: section.assistant.available
                text: qsTr("Try it")
                onClicked: section.assistant.tryIt()
            }
            Button {
                objectName: "assistant.cancel"
                visible: section.assistant.trying
                text: qsTr("Cancel")
                onClicked: section.assistant.cancelTry()
            }
        }
        Label {
            width: parent.width
            objectName: "assistant.answer"
            visible: text !== ""
            wrapMode: Text.Wrap
            lineHeight: 1.3
            text: section.assistant.tryText
            color: section.assistant.tryKind === "bad" ? Theme.bad
                : section.assistant.tryKind === "good" ? Theme.text : Theme.soft
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    Card {
        width: parent.width
        SectionHeader { text: qsTr("Model on this machine") }
        SettingRow {
            label: qsTr("Server")
            hint: qsTr("Ollama or a llama.cpp server on this machine.")
            TextField {
                objectName: "assistant.server"
                width: 260
                text: section.assistant.serverUrl
                placeholderText: qsTr("http://127.0.0.1:11434 or :8080")
                Accessible.name: qsTr("Address of the model server")
                onEditingFinished: {
                    if (text !== section.assistant.serverUrl)
                        section.assistant.serverUrl = text;
                }
            }
        }
        SettingRow {
            label: qsTr("Model")
            MenuButton {
                id: picker
                objectName: "assistant.model"
                kind: "plain"
                implicitHeight: Theme.control
                leftPadding: Theme.medium
                enabled: section.assistant.models.length > 0 || section.assistant.model !== ""
                text: section.assistant.modelText
                MenuItem {
                    text: section.assistant.firstModelLabel
                    checkable: true
                    checked: section.assistant.model === ""
                    onTriggered: section.assistant.model = ""
                }
                Instantiator {
                    model: section.assistant.models
                    delegate: MenuItem {
                        required property string modelData
                        text: modelData
                        checkable: true
                        checked: section.assistant.model === modelData
                        onTriggered: section.assistant.model = modelData
                    }
                    onObjectAdded: (index, item) => picker.list.insertItem(index + 1, item)
                    onObjectRemoved: (index, item) => picker.list.removeItem(item)
                }
            }
        }
        SettingRow {
            visible: hint !== ""
            hint: section.assistant.elsewhereText
            Button {
                objectName: "assistant.elsewhere"
                text: section.assistant.elsewhereAllowed ? qsTr("Don't use it") : qsTr("Use it anyway")
                onClicked: section.assistant.allowElsewhere(!section.assistant.elsewhereAllowed)
            }
        }
    }
    Card {
        width: parent.width
        SectionHeader { text: qsTr("Heavy work on this machine") }
        Label {
            width: parent.width
            objectName: "assistant.gate"
            wrapMode: Text.Wrap
            text: section.assistant.gateText
            color: section.assistant.gateIsOpen ? Theme.good : Theme.warn
        }
        Flow {
            width: parent.width
            spacing: Theme.wide
            Repeater {
                model: section.assistant.gateFacts
                Column {
                    required property machineFact modelData
                    spacing: 3
                    Label {
                        text: parent.modelData.label
                        font.pixelSize: Theme.meta
                        color: Theme.faint
                    }
                    Label { text: parent.modelData.value }
                }
            }
        }
    }
    Card {
        width: parent.width
        SectionHeader { text: qsTr("Memory") }
        Label {
            width: parent.width
            visible: section.assistant.memory.length === 0
            wrapMode: Text.Wrap
            text: section.assistant.memoryEmptyText
            color: Theme.soft
        }
        SettingRow {
            visible: hint !== ""
            hint: section.assistant.forgottenText
            Button {
                id: keep
                objectName: "assistant.keep"
                text: qsTr("Undo")
                onClicked: section.assistant.keepForgotten()
            }
        }
        Repeater {
            model: section.assistant.memory
            Column {
                id: entry
                required property memoryLine modelData
                width: parent ? parent.width : 0
                spacing: Theme.tight
                Label {
                    visible: text !== ""
                    text: entry.modelData.heading
                    font.pixelSize: Theme.meta
                    font.weight: Theme.strong
                    color: Theme.soft
                    Accessible.role: Accessible.Heading
                }
                SettingRow {
                    label: entry.modelData.body
                    Button {
                        objectName: "assistant.forget." + entry.modelData.id
                        kind: "quiet"
                        text: qsTr("Forget")
                        Accessible.name: qsTr("Forget: %1").arg(entry.modelData.body)
                        onClicked: {
                            const undo = keep;
                            const reason = focusReason;
                            section.assistant.forget(entry.modelData.id);
                            undo.forceActiveFocus(reason);
                        }
                    }
                }
            }
        }
    }
}
