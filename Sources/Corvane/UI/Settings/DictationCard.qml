import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Dictation into other programs: its key, and how the text gets there.
Card {
    id: card

    required property DictationSettings dictation

    SectionHeader { text: qsTr("Dictation") }
    SettingRow {
        label: card.dictation.enabledLabel
        hint: card.dictation.enabledHint
        Toggle {
            objectName: "dictation.enabled"
            checked: card.dictation.enabled
            Accessible.name: card.dictation.enabledLabel
            onToggled: card.dictation.enabled = checked
        }
    }
    SettingRow {
        visible: card.dictation.enabled
        label: qsTr("Key")
        hint: card.dictation.hotKey.hint
        KeyField {
            objectName: "dictation.key"
            hotKey: card.dictation.hotKey
        }
    }
    SettingRow {
        visible: card.dictation.enabled
        label: card.dictation.pushToTalkLabel
        hint: card.dictation.pushToTalkHint
        Toggle {
            objectName: "dictation.pushToTalk"
            checked: card.dictation.pushToTalk
            Accessible.name: card.dictation.pushToTalkLabel
            onToggled: card.dictation.pushToTalk = checked
        }
    }
    SettingRow {
        visible: card.dictation.enabled
        label: card.dictation.insertionLabel
        hint: card.dictation.insertionText
    }
    Banner {
        objectName: "dictation.problem"
        width: parent.width
        visible: card.dictation.problem !== ""
        tone: "warn"
        text: card.dictation.problem
    }
}
