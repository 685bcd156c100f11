import QtQuick
import Corvane

/// What the assistant proposes for the composer. Nothing of it goes out by itself.
GenerationCard {
    id: card

    required property QtObject inbox
    readonly property QtObject draft: inbox.assistant

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
    Flow {
        width: parent.width
        spacing: Theme.tight
        visible: card.draft.citations.length > 0
        Label {
            height: 24
            verticalAlignment: Text.AlignVCenter
            text: qsTr("Rests on")
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Repeater {
            model: card.draft.citations
            Chip {
                required property var modelData
                text: modelData.label
                Accessible.name: qsTr("Show the message %1: %2").arg(modelData.label).arg(modelData.excerpt)
                onClicked: card.inbox.jumpTo(modelData.messageId)
                Tooltip { text: modelData.excerpt.slice(0, 120); shown: parent.hovered }
            }
        }
    }
    buttons: [
        Button {
            objectName: "draftPreview.accept"
            kind: card.draft.isRewrite ? "plain" : "primary"
            text: qsTr("Accept")
            hint: qsTr("After what stands in the composer")
            onClicked: card.draft.accept()
        },
        Button {
            objectName: "draftPreview.replace"
            kind: card.draft.isRewrite ? "primary" : "plain"
            text: qsTr("Replace")
            hint: qsTr("In place of what stands in the composer")
            onClicked: card.draft.replace()
        }
    ]
}
