import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Terminals
import Corvane.Work

/// The local shells of a workspace: their tabs, and above them the current terminal, unless it is hidden.
FocusScope {
    id: strip

    required property WorkShells shells
    required property WorkAgents agents
    property real room ///< what it may share
    readonly property TerminalsView terminals: shells.view

    function act(command: string) {
        if (command === "newTerminal")
            agents.createLocalShell();
        else
            (pane.item as TerminalPane)?.act(command);
    }

    implicitHeight: bar.height + (shells.open ? Math.max(140, Math.min(360, room * 0.45)) : 0)
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Local shells")

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Item {
        id: bar
        width: parent.width
        height: 40

        Button {
            id: create
            objectName: "shells.new"
            x: Theme.wide - leftPadding
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 28
            focus: !strip.shells.open
            kind: "quiet"
            text: strip.shells.createLabel
            onClicked: strip.agents.createLocalShell()
        }
        ListView {
            anchors.left: create.right
            anchors.leftMargin: Theme.small
            anchors.right: fold.left
            anchors.verticalCenter: parent.verticalCenter
            height: 28
            orientation: ListView.Horizontal
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            spacing: 2
            model: strip.terminals.tabs
            Accessible.role: Accessible.PageTabList
            Accessible.name: qsTr("Local shells")
            delegate: FilterTab {
                required property terminalTab entry
                objectName: "shells.tab:" + entry.title
                text: entry.title
                selected: entry.selected && strip.shells.open
                onClicked: strip.shells.pick(entry.tabId)
            }
        }
        IconButton {
            id: fold
            objectName: "shells.fold"
            anchors.right: close.left
            anchors.verticalCenter: parent.verticalCenter
            visible: strip.terminals.count > 0
            size: 28
            iconSize: 14
            icon.name: strip.shells.open ? "go-down" : "go-up"
            text: strip.shells.foldLabel
            onClicked: strip.shells.open = !strip.shells.open
        }
        IconButton {
            id: close
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            visible: strip.shells.open
            size: 28
            iconSize: 14
            icon.name: "window-close"
            text: strip.terminals.closeLabel
            onClicked: strip.terminals.closeCurrent()
        }
    }
    Loader {
        id: pane
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        active: strip.shells.open
        focus: active
        sourceComponent: TerminalPane { focus: true; screen: strip.terminals }
    }
    Connections {
        target: strip.shells
        function onBrought() { strip.forceActiveFocus(Qt.OtherFocusReason); }
    }
    Connections {
        target: strip.terminals.question
        function onClipboardGranted(text) { WindowTools.copy(text); }
    }
}
