import QtQuick
import QtQml
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev

/// The command of an agent on another host, to review and to copy.
FocusScope {
    id: view

    required property DevServerAgent server
    property choice noRule

    Binding { target: task; property: "text"; value: view.server.task }

    component Line: Card {
        id: line
        property string title
        property string command
        SectionHeader { text: line.title }
        Label {
            objectName: line.objectName + ".text"
            width: parent.width
            wrapMode: Text.WrapAnywhere
            elide: Text.ElideNone
            text: line.command
            font.family: "monospace"
        }
        Button {
            implicitHeight: 28
            icon.name: "edit-copy"
            text: qsTr("Copy")
            onClicked: WindowTools.copy(line.command)
        }
    }

    Flickable {
        id: scroll
        anchors.fill: parent
        focus: true
        clip: true
        contentHeight: column.height + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }

        Column {
            id: column
            x: Theme.wide
            y: Theme.large
            width: Math.min(parent.width - Theme.wide * 2, 760)
            spacing: Theme.medium

            Row {
                width: parent.width
                spacing: Theme.medium
                TextField {
                    objectName: "dev.agentName"
                    width: (parent.width - Theme.medium) / 2
                    focus: true
                    label: qsTr("Agent")
                    text: view.server.name
                    onTextEdited: view.server.name = text
                }
                TextField {
                    width: (parent.width - Theme.medium) / 2
                    label: qsTr("Role")
                    text: view.server.role
                    onTextEdited: view.server.role = text
                }
            }
            TextBox {
                id: task
                objectName: "dev.agentTask"
                width: parent.width
                label: qsTr("Task")
                placeholderText: view.server.taskHint
                maximumLines: 4
                onTextChanged: if (editing) view.server.task = text
            }
            Toggle {
                objectName: "dev.dryRun"
                text: qsTr("Dry run: the script prints what it would do")
                checked: view.server.dryRun
                onToggled: view.server.dryRun = checked
            }
            Line {
                objectName: "dev.serverCommand"
                width: parent.width
                title: qsTr("Review, then run")
                command: view.server.command
            }
            Button {
                objectName: "dev.showCommand"
                text: qsTr("Show it in a terminal")
                onClicked: view.server.showInTerminal()
            }
            Line {
                width: parent.width
                title: qsTr("First, the relay")
                command: view.server.relayCommand
            }
            Line {
                width: parent.width
                title: qsTr("Then, the tunnel")
                command: view.server.tunnelCommand
            }
            Repeater {
                model: view.server.rules.length
                Column {
                    id: rule
                    required property int index
                    readonly property choice entry: view.server.rules[index] ?? view.noRule
                    width: column.width
                    spacing: 2
                    Label { text: rule.entry.id; font.weight: Theme.strong }
                    Label {
                        width: parent.width
                        wrapMode: Text.Wrap
                        text: rule.entry.label
                        color: Theme.soft
                    }
                }
            }
        }
    }
}
