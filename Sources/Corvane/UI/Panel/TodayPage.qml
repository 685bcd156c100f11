import QtQuick
import Corvane.Controls
import Corvane.Panel

/// What the panel at the tray shows, in the main window.
Page {
    id: page

    required property CorvaneMenuBarView screen

    function act(command: string) {
        if (command === "back")
            tabs.stepBack();
    }

    panes: [tabs]
    Keys.onPressed: event => {
        const tab = screen.tabs[event.key - Qt.Key_1];
        event.accepted = tab !== undefined && event.modifiers === Qt.NoModifier;
        if (event.accepted)
            screen.tab = tab.id;
    }
    Binding { target: page.screen; property: "visible"; value: page.Window.visibility !== Window.Hidden }
    Component.onDestruction: screen.visible = false

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }
    PanelTabs {
        id: tabs
        anchors.fill: parent
        focus: true
        panel: page.screen
        columnWidth: Math.min(width, 760)
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("Today")
    }
}
