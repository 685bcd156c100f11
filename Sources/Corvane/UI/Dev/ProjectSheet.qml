import QtQuick
import QtQml
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

    Binding { target: goal; property: "text"; value: sheet.project.goal.text }

    FormFields {
        id: fields
        form: sheet.project
        name: sheet.name
        columns: 2
        columnSpacing: Theme.medium
    }
    TextBox {
        id: goal
        objectName: "project.goal"
        width: parent.width
        label: sheet.project.goal.label
        maximumLines: 4
        onTextChanged: if (editing) sheet.project.goal.text = text
        onSubmitted: sheet.project.submit()
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
    Label {
        objectName: "project.error"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.project.message
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
