import QtQuick
import Corvane.Controls
import Corvane.Terminals

/// The Dev hub: local shells in tabs.
Page {
    id: page

    required property TerminalsView screen

    panes: [tabs, pane.notices, desk]

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
        visible: page.screen.count > 0
        screen: page.screen
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
            visible: page.screen.count === 0

            EmptyState {
                width: parent.width
                icon: "hub-dev"
                title: page.screen.emptyTitle
                detail: page.screen.emptyDetail
            }
            Button {
                id: start
                objectName: "terminals.start"
                anchors.horizontalCenter: parent.horizontalCenter
                focus: page.screen.count === 0
                kind: "primary"
                text: page.screen.createLabel
                hint: Commands.keysOf("newTerminal")
                onClicked: page.screen.create()
            }
        }
        TerminalPane {
            id: pane
            anchors.fill: parent
            visible: page.screen.count > 0
            focus: visible
            screen: page.screen
        }
    }
    Connections {
        target: page.screen
        function onClipboardGranted(text) { WindowTools.copy(text); }
        function onChanged() {
            if (page.screen.count === 0)
                start.forceActiveFocus();
            else if (start.activeFocus)
                pane.forceActiveFocus();
        }
    }
}
