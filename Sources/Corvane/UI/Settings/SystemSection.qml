import QtQuick
import Corvane.Controls
import Corvane.Settings

/// How the window looks, what it announces, and where things are kept.
Column {
    id: section

    required property IntegrationsView settings
    required property Appearance appearance
    readonly property SystemSettings system: settings.system

    spacing: Theme.large

    Card {
        width: parent.width
        SettingRow {
            label: qsTr("Appearance")
            hint: qsTr("Light, dark, or following the desktop.")
            Repeater {
                model: section.appearance.modes
                Chip {
                    required property choice modelData
                    objectName: "appearance." + modelData.id
                    implicitHeight: 28
                    text: modelData.label
                    checkable: false
                    checked: section.appearance.mode === modelData.id
                    Accessible.role: Accessible.RadioButton
                    onClicked: section.appearance.mode = modelData.id
                }
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            visible: section.system.canStartAtLogin
            label: section.system.startLabel
            hint: section.system.startHint
            Toggle {
                objectName: "system.startAtLogin"
                checked: section.system.startsAtLogin
                Accessible.name: section.system.startLabel
                onToggled: section.system.startsAtLogin = checked
            }
        }
        SettingRow {
            label: section.system.notifyLabel
            hint: section.system.notifyHint
            Toggle {
                objectName: "system.notify"
                checked: section.system.notifyOnNewMessage
                Accessible.name: section.system.notifyLabel
                onToggled: section.system.notifyOnNewMessage = checked
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: section.system.returnSendsLabel
            hint: section.system.returnSendsHint
            Toggle {
                objectName: "system.returnSends"
                checked: section.system.returnSends
                Accessible.name: section.system.returnSendsLabel
                onToggled: section.system.returnSends = checked
            }
        }
    }
    Card {
        width: parent.width
        visible: section.system.hotKeyCount > 0
        Repeater {
            model: section.system.hotKeyCount
            SettingRow {
                id: row
                required property int index
                readonly property HotKey hotKey: section.system.hotKey(index)
                label: row.hotKey.label
                hint: row.hotKey.hint
                KeyField {
                    objectName: "system.key." + row.hotKey.id
                    hotKey: row.hotKey
                }
            }
        }
    }
    LocalAccessCard {
        width: parent.width
        access: section.settings.localAccess
    }
    Card {
        width: parent.width
        SettingRow {
            label: qsTr("Passwords and tokens")
            hint: section.system.secretsPlace
            Button {
                objectName: "system.unlock"
                visible: section.system.canUnlock
                text: qsTr("Unlock…")
                icon.name: "lock"
                onClicked: section.system.unlock()
            }
        }
        SettingRow {
            label: qsTr("Data folder")
            hint: section.system.dataFolder
            Button {
                objectName: "system.openFolder"
                text: qsTr("Open")
                icon.name: "document-open"
                onClicked: WindowTools.open(section.system.dataFolder)
            }
        }
    }
}
