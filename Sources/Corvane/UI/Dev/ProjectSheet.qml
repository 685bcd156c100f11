import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// A project, new or to be changed. A save that fails keeps what was typed.
Sheet {
    id: view

    required property DevProjectSheet sheet
    readonly property bool begun: sheet.open

    onBegunChanged: {
        if (begun) {
            open();
            name.forceActiveFocus(Qt.TabFocusReason);
        } else {
            close();
        }
    }
    onClosed: if (sheet.open) sheet.cancel()

    objectName: "projectSheet"
    width: 560
    title: sheet.heading

    Binding { target: goal; property: "text"; value: view.sheet.goal }

    Row {
        width: parent.width
        spacing: Theme.medium
        TextField {
            id: name
            objectName: "project.name"
            width: (parent.width - Theme.medium) / 2
            label: qsTr("Name")
            text: view.sheet.name
            onTextEdited: view.sheet.name = text
            onAccepted: view.sheet.save()
        }
        TextField {
            objectName: "project.slug"
            width: (parent.width - Theme.medium) / 2
            label: qsTr("Slug")
            readOnly: view.sheet.slugFixed
            placeholderText: view.sheet.slugHint
            text: view.sheet.slug
            onTextEdited: view.sheet.slug = text
            onAccepted: view.sheet.save()
        }
    }
    TextBox {
        id: goal
        objectName: "project.goal"
        width: parent.width
        label: qsTr("Goal")
        maximumLines: 4
        onTextChanged: if (editing) view.sheet.goal = text
        onSubmitted: view.sheet.save()
    }
    TextField {
        objectName: "project.repo"
        width: parent.width
        label: qsTr("Repository")
        placeholderText: qsTr("~/project")
        text: view.sheet.repoPath
        onTextEdited: view.sheet.repoPath = text
        onAccepted: view.sheet.save()
    }
    TextField {
        objectName: "project.controlDir"
        width: parent.width
        label: qsTr("Folder for agents' files")
        placeholderText: view.sheet.controlDirHint
        text: view.sheet.controlDir
        onTextEdited: view.sheet.controlDir = text
        onAccepted: view.sheet.save()
    }
    Row {
        width: parent.width
        spacing: Theme.medium
        TextField {
            width: (parent.width - Theme.medium) / 2
            label: qsTr("Category")
            text: view.sheet.category
            onTextEdited: view.sheet.category = text
            onAccepted: view.sheet.save()
        }
        TextField {
            width: (parent.width - Theme.medium) / 2
            label: qsTr("Host")
            placeholderText: qsTr("this computer")
            text: view.sheet.host
            onTextEdited: view.sheet.host = text
            onAccepted: view.sheet.save()
        }
    }
    Row {
        spacing: Theme.wide
        PriorityRow {
            label: qsTr("Status")
            choices: view.sheet.statuses
            chosen: view.sheet.status
            onPicked: word => view.sheet.status = word
        }
        PriorityRow {
            label: qsTr("Priority")
            choices: ["1", "2", "3", "4", "5"]
            chosen: view.sheet.priority.toString()
            onPicked: word => view.sheet.priority = parseInt(word)
        }
    }
    Label {
        objectName: "project.error"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: view.sheet.error
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: view.sheet.cancel()
        },
        Button {
            objectName: "project.save"
            kind: "primary"
            text: qsTr("Save")
            onClicked: view.sheet.save()
        }
    ]
}
