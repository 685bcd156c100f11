import QtQuick
import Corvane.Calls
import Corvane.Controls

/// What is recorded of calls, and how long it is kept.
Column {
    id: section

    required property CallSettings calls

    spacing: Theme.large

    /// A choice of a few options.
    component Chips: Row {
        id: chips
        required property list<choice> choices
        required property string chosen
        required property string name
        signal picked(string id)
        spacing: Theme.tight
        Repeater {
            model: chips.choices
            Chip {
                required property choice modelData
                objectName: chips.name + "." + modelData.id
                implicitHeight: 28
                text: modelData.label
                checkable: false
                checked: chips.chosen === modelData.id
                Accessible.role: Accessible.RadioButton
                onClicked: chips.picked(modelData.id)
            }
        }
    }

    Card {
        width: parent.width
        SettingRow {
            label: section.calls.autoRecordLabel
            hint: section.calls.autoRecordHint
            Toggle {
                objectName: "calls.auto"
                checked: section.calls.autoRecord
                Accessible.name: section.calls.autoRecordLabel
                onToggled: section.calls.autoRecord = checked
            }
        }
        Label {
            objectName: "calls.autoText"
            width: parent.width
            wrapMode: Text.Wrap
            text: section.calls.autoRecordText
            color: Theme.soft
        }
        SettingRow {
            visible: section.calls.autoRecord
            label: section.calls.requireMeetingAppLabel
            hint: section.calls.requireMeetingAppHint
            Toggle {
                objectName: "calls.requireApp"
                checked: section.calls.requireMeetingApp
                Accessible.name: section.calls.requireMeetingAppLabel
                onToggled: section.calls.requireMeetingApp = checked
            }
        }
        SettingRow {
            visible: section.calls.autoRecord
            label: section.calls.leadLabel
            Chips {
                name: "calls.lead"
                choices: section.calls.leads
                chosen: section.calls.lead
                onPicked: id => section.calls.lead = id
            }
        }
        SettingRow {
            visible: section.calls.autoRecord
            label: section.calls.graceLabel
            Chips {
                name: "calls.grace"
                choices: section.calls.graces
                chosen: section.calls.grace
                onPicked: id => section.calls.grace = id
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: section.calls.systemAudioLabel
            hint: section.calls.systemAudioStatus
            Toggle {
                objectName: "calls.systemAudio"
                checked: section.calls.systemAudio
                Accessible.name: section.calls.systemAudioLabel
                onToggled: section.calls.systemAudio = checked
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: section.calls.alsoOnBatteryLabel
            hint: section.calls.alsoOnBatteryHint
            Toggle {
                objectName: "calls.alsoOnBattery"
                checked: section.calls.alsoOnBattery
                Accessible.name: section.calls.alsoOnBatteryLabel
                onToggled: section.calls.alsoOnBattery = checked
            }
        }
        SettingRow {
            label: section.calls.codexLabel
            hint: section.calls.codexHint
            Toggle {
                objectName: "calls.codex"
                checked: section.calls.codexAllowed
                Accessible.name: section.calls.codexLabel
                onToggled: section.calls.codexAllowed = checked
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: section.calls.keepingLabel
            hint: section.calls.keepingHint
        }
        Chips {
            name: "calls.keep"
            choices: section.calls.keeping
            chosen: section.calls.kept
            onPicked: id => section.calls.kept = id
        }
    }
}
