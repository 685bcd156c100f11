import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What is to be done for a person.
Section {
    id: section

    required property CRMPane crm

    name: "tasks"
    title: qsTr("Tasks")
    count: crm.tasks.rows.count
    emptyText: crm.tasks.emptyText

    Repeater {
        model: section.crm.tasks.rows
        PaneLine {
            id: task
            lines: 2
            lead: CheckBox {
                x: -Theme.tight
                y: -5
                objectName: "contact.complete"
                focusPolicy: Qt.StrongFocus
                name: qsTr("Complete: %1").arg(task.entry.text)
                hint: qsTr("Complete")
                onClicked: section.crm.completeTask(task.entry.id)
            }
        }
    }
    Item { width: 1; height: Theme.tight }
    TextField {
        objectName: "contact.task"
        width: parent.width
        icon: "list-add"
        placeholderText: qsTr("Add a task")
        text: section.crm.taskText
        onTextChanged: section.crm.taskText = text
        onAccepted: section.crm.addTask(text)
    }
}
