import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Backups, and the checks of the profile and the computer.
Column {
    id: section

    required property BackupKeeper backups
    required property DoctorView doctor
    property finding noFinding

    spacing: Theme.large

    function tone(state: string): color {
        return state === "good" ? Theme.good : state === "failure" ? Theme.bad : Theme.warn;
    }

    Card {
        width: parent.width
        SettingRow {
            label: section.backups.label
            hint: section.backups.lastText
            Button {
                objectName: "care.backUp"
                visible: !section.backups.busy
                kind: "primary"
                text: qsTr("Back up now")
                onClicked: section.backups.backUpNow()
            }
        }
        ProgressRow {
            name: "care.backup"
            visible: section.backups.busy
            progress: section.backups.progress
            text: section.backups.progressText
            onCancelled: section.backups.cancel()
        }
        Banner {
            objectName: "care.backupError"
            width: parent.width
            visible: text !== ""
            tone: "bad"
            text: section.backups.error
        }
        SettingRow {
            label: section.backups.dailyLabel
            hint: section.backups.dailyHint
            Toggle {
                objectName: "care.daily"
                checked: section.backups.daily
                Accessible.name: section.backups.dailyLabel
                onToggled: section.backups.daily = checked
            }
        }
        SettingRow {
            label: section.backups.mediaLabel
            hint: section.backups.mediaHint
            Toggle {
                objectName: "care.media"
                checked: section.backups.media
                Accessible.name: section.backups.mediaLabel
                onToggled: section.backups.media = checked
            }
        }
        SettingRow {
            label: section.backups.folderLabel
            hint: section.backups.folder
            Button {
                objectName: "care.folder"
                text: qsTr("Choose…")
                onClicked: section.backups.chooseFolder()
            }
            Button {
                text: qsTr("Open")
                icon.name: "document-open"
                onClicked: WindowTools.open(section.backups.folder)
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: section.doctor.label
            hint: section.doctor.hint
            Button {
                objectName: "care.fix"
                visible: section.doctor.canFix
                text: qsTr("Fix")
                onClicked: section.doctor.fix()
            }
            Button {
                objectName: "care.check"
                visible: !section.doctor.busy
                text: section.doctor.findings.length > 0 ? qsTr("Check again") : qsTr("Check now")
                onClicked: section.doctor.check()
            }
            Button {
                objectName: "care.stop"
                visible: section.doctor.busy
                text: qsTr("Cancel")
                onClicked: section.doctor.cancel()
            }
        }
        Label {
            objectName: "care.fixed"
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            text: section.doctor.fixed
            color: Theme.soft
        }
        Repeater {
            model: section.doctor.findings.length
            SettingRow {
                id: line
                required property int index
                readonly property finding found: section.doctor.findings[index] ?? section.noFinding
                label: line.found.title
                hint: line.found.advice === "" || line.found.state === "good" ? line.found.words : line.found.words + "\n" + line.found.advice
                Label {
                    text: line.found.stateText
                    color: section.tone(line.found.state)
                }
            }
        }
    }
}
