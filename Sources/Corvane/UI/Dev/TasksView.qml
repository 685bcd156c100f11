import QtQuick
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// The board of the project, and what can be created on it.
FocusScope {
    id: view

    required property TerminalWorkspaceView workspace

    Row {
        id: head
        x: Theme.wide
        y: Theme.medium
        spacing: Theme.small

        Button {
            objectName: "dev.newItem"
            kind: "primary"
            text: qsTr("New item")
            hint: Commands.keysOf("newWork")
            onClicked: view.workspace.create.begin("item")
        }
        Button {
            objectName: "dev.quickTask"
            enabled: view.workspace.tasks.canCreate
            text: qsTr("Quick task")
            onClicked: view.workspace.tasks.createQuickTask()
        }
        Button {
            objectName: "dev.quickBug"
            enabled: view.workspace.tasks.canCreate
            text: qsTr("Quick bug")
            onClicked: view.workspace.tasks.createQuickBug()
        }
        MenuButton {
            objectName: "dev.moreTasks"
            implicitHeight: Theme.control
            text: qsTr("More")
            MenuItem {
                text: qsTr("Task From Terminal")
                enabled: view.workspace.tasks.hasTerminal
                onTriggered: view.workspace.tasks.taskFromTerminal()
            }
            MenuItem {
                text: qsTr("Bug From Terminal")
                enabled: view.workspace.tasks.hasTerminal
                onTriggered: view.workspace.tasks.bugFromTerminal()
            }
            MenuItem {
                text: qsTr("Propose a decision")
                enabled: view.workspace.tasks.canCreate
                onTriggered: view.workspace.tasks.proposeDevDecision()
            }
        }
    }
    BoardView {
        anchors.top: head.bottom
        anchors.topMargin: Theme.tight
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        board: view.workspace.tasks.board
        current: view.workspace.tasks.item.itemId
        onOpened: id => view.workspace.tasks.item.open(id)
    }
}
