import QtQuick
import Corvane.Controls
import Corvane.Terminals

/// Local shells in tabs.
FocusScope {
    id: view

    required property TerminalsView screen
    readonly property alias tabs: tabs
    readonly property alias notices: pane.notices
    readonly property alias front: desk

    /// Handles a command of the keymap.
    function act(command: string) {
        pane.act(command);
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    TerminalTabs {
        id: tabs
        width: parent.width
        height: visible ? implicitHeight : 0
        visible: view.screen.count > 0
        screen: view.screen
        onLeave: pane.terminal.forceActiveFocus(Qt.TabFocusReason)
    }
    FocusScope {
        id: desk
        anchors.fill: parent
        anchors.topMargin: tabs.height
        focus: true

        Column {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -Theme.huge
            width: 420
            spacing: Theme.wide
            visible: view.screen.count === 0

            EmptyState {
                width: parent.width
                icon: "hub-dev"
                title: view.screen.emptyTitle
                detail: view.screen.emptyDetail
            }
            Button {
                id: start
                objectName: "terminals.start"
                anchors.horizontalCenter: parent.horizontalCenter
                focus: view.screen.count === 0
                kind: "primary"
                text: view.screen.createLabel
                hint: Commands.keysOf("newTerminal")
                onClicked: view.screen.create()
            }
        }
        TerminalPane {
            id: pane
            anchors.fill: parent
            visible: view.screen.count > 0
            focus: visible
            screen: view.screen
        }
    }
    Connections {
        target: view.screen
        function onChanged() {
            if (view.screen.count === 0)
                start.forceActiveFocus();
            else if (start.activeFocus)
                pane.forceActiveFocus();
        }
    }
    Connections {
        target: view.screen.question
        function onClipboardGranted(text) { WindowTools.copy(text); }
    }
}
