import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What the assistant proposes for the composer. Nothing of it goes out by itself.
GenerationCard {
    id: card

    required property InboxView inbox
    readonly property DraftAssistant draft: inbox.reply.assistant

    objectName: "draftPreview"
    panel: draft
    name: qsTr("Draft preview")
    dismissLabel: qsTr("Dismiss draft preview")

    Label {
        width: parent.width
        text: card.draft.caption + " · " + card.draft.modelName
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    TextEdit {
        objectName: "draftPreview.text"
        width: parent.width
        text: card.draft.draft
        textFormat: TextEdit.PlainText
        wrapMode: TextEdit.Wrap
        readOnly: true
        selectByMouse: true
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentInk
        font.pixelSize: Theme.body
        Accessible.name: card.draft.draft
    }
    Repeater {
        model: card.draft.warnings
        Row {
            id: warning
            required property string modelData
            width: parent ? parent.width : 0
            spacing: Theme.small
            Icon {
                id: sign
                name: "dialog-warning"
                size: 14
                color: Theme.warn
            }
            Label {
                width: parent.width - sign.width - parent.spacing
                text: warning.modelData
                wrapMode: Text.Wrap
                font.pixelSize: Theme.meta
                color: Theme.warn
            }
        }
    }
    Citations {
        width: parent.width
        person: card.inbox.person
        citations: card.draft.citations
    }
    buttons: [
        Button {
            objectName: "draftPreview.accept"
            kind: card.draft.isRewrite ? "plain" : "primary"
            text: qsTr("Accept")
            hint: qsTr("After the composer's text")
            onClicked: card.draft.accept()
        },
        Button {
            objectName: "draftPreview.replace"
            kind: card.draft.isRewrite ? "primary" : "plain"
            text: qsTr("Replace")
            hint: qsTr("Replaces the composer's text")
            onClicked: card.draft.replace()
        },
        Button {
            objectName: "draftPreview.undo"
            visible: card.inbox.reply.composer.canUndo
            text: qsTr("Undo")
            hint: qsTr("The composer as it was before the last draft")
            onClicked: card.inbox.reply.composer.undo()
        }
    ]
}
