import QtQuick
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// A project, new or to be changed.
FormSheet {
    id: sheet

    required property DevProjectForm project

    form: project
    name: "project"
    objectName: "projectSheet"
    width: 560
    onBegun: fields.focusFirst()

    FormFields {
        id: fields
        form: sheet.project
        name: sheet.name
        columns: 2
        columnSpacing: Theme.medium
    }
    Row {
        spacing: Theme.wide
        PriorityRow {
            label: qsTr("Status")
            choices: sheet.project.statuses
            chosen: sheet.project.status
            onPicked: word => sheet.project.status = word
        }
        PriorityRow {
            label: qsTr("Priority")
            choices: ["1", "2", "3", "4", "5"]
            chosen: sheet.project.priority.toString()
            onPicked: word => sheet.project.priority = parseInt(word)
        }
    }
}
