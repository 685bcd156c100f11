import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// Which calendars are read and shown, where new events go, and whether agents may add some.
Column {
    id: section

    required property CalendarSettings calendar
    property calendarLine noLine

    spacing: Theme.large

    Card {
        width: parent.width
        SettingRow {
            label: section.calendar.stateText
            Button {
                objectName: "calendarSettings.connect"
                text: section.calendar.connected ? qsTr("Check again") : qsTr("Connect Calendar")
                onClicked: section.calendar.connectCalendar()
            }
        }
        Repeater {
            model: section.calendar.calendars.length
            SettingRow {
                id: row
                required property int index
                readonly property calendarLine line: section.calendar.calendars[index] ?? section.noLine
                label: line.title
                hint: line.detail
                Chip {
                    objectName: "calendarSettings.default"
                    visible: row.line.takesNew
                    implicitHeight: 28
                    checkable: false
                    checked: row.line.chosen
                    text: qsTr("New events")
                    Accessible.role: Accessible.RadioButton
                    Accessible.name: qsTr("New events go to %1").arg(row.line.title)
                    onClicked: section.calendar.chooseForNew(row.line.id)
                }
                Toggle {
                    objectName: "calendarSettings.shown"
                    checked: row.line.shown
                    Accessible.name: qsTr("Show %1").arg(row.line.title)
                    onToggled: section.calendar.toggle(row.line.title)
                }
            }
        }
        Button {
            objectName: "calendarSettings.makeLocal"
            visible: section.calendar.connected && section.calendar.calendars.length === 0
            text: qsTr("Make a local calendar")
            onClicked: section.calendar.makeLocal()
        }
    }
    Card {
        width: parent.width
        visible: section.calendar.hasEvolution
        SettingRow {
            label: qsTr("Evolution's calendars")
            hint: qsTr("The calendars of Evolution and the desktop's online accounts. An event that is also in a folder shows once.")
            Toggle {
                objectName: "calendarSettings.evolution"
                checked: section.calendar.evolution
                Accessible.name: qsTr("Read Evolution's calendars")
                onToggled: section.calendar.evolution = checked
            }
        }
    }
    Card {
        width: parent.width
        SectionHeader { text: qsTr("Folders") }
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            lineHeight: 1.3
            text: qsTr("Calendars are folders of .ics files, as vdirsyncer and khal store them. Those in the usual place are found automatically.")
            color: Theme.soft
        }
        Repeater {
            model: section.calendar.folders
            SettingRow {
                id: folder
                required property string modelData
                label: modelData
                Button {
                    kind: "quiet"
                    text: qsTr("Remove")
                    Accessible.name: qsTr("Remove %1").arg(folder.modelData)
                    onClicked: section.calendar.removeFolder(folder.modelData)
                }
            }
        }
        Row {
            spacing: Theme.small
            TextField {
                id: path
                objectName: "calendarSettings.folder"
                width: 320
                placeholderText: qsTr("~/calendars")
                Accessible.name: qsTr("Folder")
                onAccepted: add.clicked()
            }
            Button {
                id: add
                objectName: "calendarSettings.addFolder"
                text: qsTr("Add folder")
                enabled: path.text.trim() !== ""
                onClicked: if (section.calendar.addFolder(path.text)) path.text = ""
            }
            Button {
                objectName: "calendarSettings.chooseFolder"
                kind: "quiet"
                text: qsTr("Choose…")
                Accessible.name: qsTr("Choose a folder")
                onClicked: section.calendar.chooseFolder()
            }
        }
        Label {
            visible: text !== ""
            text: section.calendar.refusal
            color: Theme.bad
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: qsTr("Agents may add events")
            hint: qsTr("Each one is announced, and can be undone for ten seconds. Otherwise they wait in Approvals.")
            Toggle {
                objectName: "calendarSettings.agents"
                checked: section.calendar.agentsMayAdd
                Accessible.name: qsTr("Agents may add events")
                onToggled: section.calendar.agentsMayAdd = checked
            }
        }
        SettingRow {
            label: qsTr("Your other addresses")
            hint: qsTr("Separated by commas. Invitations to these addresses count as yours, too.")
            TextField {
                objectName: "calendarSettings.addresses"
                width: 260
                text: section.calendar.addresses
                Accessible.name: qsTr("Your other addresses")
                onEditingFinished: {
                    if (text !== section.calendar.addresses)
                        section.calendar.addresses = text;
                }
            }
        }
    }
}
