import QtQuick
import Corvane.Controls
import Corvane.Dev

/// What can be started in a terminal of the project, and what its text can become.
Item {
    id: bar

    required property TerminalWorkspaceView workspace
    property choice noAction

    implicitHeight: 40

    Row {
        x: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
        Repeater {
            model: bar.workspace.launcher.actions.length
            Button {
                required property int index
                readonly property choice entry: bar.workspace.launcher.actions[index] ?? bar.noAction
                objectName: "dev.launch:" + entry.id
                implicitHeight: 28
                leftPadding: Theme.small
                rightPadding: Theme.small
                kind: "quiet"
                text: entry.label
                onClicked: bar.workspace.launcher.runQuickAction(entry.id)
            }
        }
    }
    MenuButton {
        objectName: "dev.fromTerminal"
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        text: qsTr("From this terminal")
        MenuItem {
            text: qsTr("Task From Terminal")
            enabled: bar.workspace.tasks.hasTerminal
            onTriggered: bar.workspace.tasks.taskFromTerminal()
        }
        MenuItem {
            text: qsTr("Bug From Terminal")
            enabled: bar.workspace.tasks.hasTerminal
            onTriggered: bar.workspace.tasks.bugFromTerminal()
        }
        MenuItem {
            text: qsTr("Propose as knowledge")
            enabled: bar.workspace.tasks.hasTerminal
            onTriggered: bar.workspace.memory.saveTerminalTranscriptMemory()
        }
        MenuSeparator {}
        MenuItem {
            text: qsTr("Open the project's folder")
            onTriggered: bar.workspace.launcher.openFolder()
        }
    }
}
