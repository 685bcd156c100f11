import QtQuick
import Corvane.Calls
import Corvane.Controls

/// What is recorded of calls, and how long it is kept.
Column {
    id: section

    required property CallSettings calls

    spacing: Theme.large

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
        Row {
            spacing: Theme.tight
            Repeater {
                model: section.calls.keeping
                Chip {
                    required property choice modelData
                    objectName: "calls.keep." + modelData.id
                    implicitHeight: 28
                    text: modelData.label
                    checkable: false
                    checked: section.calls.kept === modelData.id
                    Accessible.role: Accessible.RadioButton
                    onClicked: section.calls.kept = modelData.id
                }
            }
        }
    }
}
