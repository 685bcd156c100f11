import QtQuick
import Corvane.Controls
import Corvane.Dev

/// The Dev hub.
Page {
    id: page

    required property TerminalWorkspaceView screen

    panes: [workspace.rail, workspace.head, workspace.desk.tabs, workspace.desk.notices, workspace.desk.front, workspace.surface, workspace.aside]

    function act(command: string) {
        workspace.act(command);
    }

    Workspace {
        id: workspace
        anchors.fill: parent
        focus: true
        workspace: page.screen
    }
}
