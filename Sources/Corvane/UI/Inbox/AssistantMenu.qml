import QtQml
import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What the assistant can do with the open thread and with the text in the composer.
IconButton {
    id: button

    required property Reply reply
    readonly property DraftAssistant draft: reply.assistant
    readonly property bool hasText: reply.composer.canSend

    signal askAsked

    objectName: "composer.assistant"
    icon.name: "hub-lumo"
    text: qsTr("Assistant")
    key: Commands.keysOf("assistant")
    Accessible.role: Accessible.ButtonMenu
    onClicked: openMenu()

    function openMenu() {
        menu.popup(button, width - menu.implicitWidth, -menu.implicitHeight - Theme.tight);
    }

    Menu {
        id: menu
        delegate: MenuItem { icon.name: subMenu === languages ? "languages" : "document-edit" }
        MenuItem {
            objectName: "assistant.draftReply"
            icon.name: "mail-reply"
            text: qsTr("Draft a reply")
            onTriggered: button.draft.draftReply()
        }
        MenuItem {
            objectName: "assistant.summarize"
            icon.name: "view-list"
            text: qsTr("Summarize this thread")
            onTriggered: button.reply.summary.summarize()
        }
        MenuItem {
            objectName: "assistant.ask"
            icon.name: "edit-find"
            text: button.reply.askLumo.heading + "…"
            onTriggered: button.askAsked()
        }
        MenuSeparator {}
        Menu {
            id: rewrites
            title: qsTr("Rewrite composer draft")
            enabled: button.hasText
            Instantiator {
                model: button.draft.rewrites
                delegate: MenuItem {
                    required property choice modelData
                    text: modelData.label
                    onTriggered: button.draft.rewrite(modelData.id)
                }
                onObjectAdded: (index, item) => rewrites.insertItem(index, item)
                onObjectRemoved: (index, item) => rewrites.removeItem(item)
            }
        }
        Menu {
            id: languages
            title: qsTr("Translate composer draft")
            enabled: button.hasText
            Instantiator {
                model: button.draft.languages
                delegate: MenuItem {
                    required property string modelData
                    text: modelData
                    onTriggered: button.draft.translate(modelData)
                }
                onObjectAdded: (index, item) => languages.insertItem(index, item)
                onObjectRemoved: (index, item) => languages.removeItem(item)
            }
        }
    }
}
