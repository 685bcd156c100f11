import QtQuick
import Corvane.Controls
import Corvane.Dev
import Corvane.Terminals
import Corvane.Work

/// Projects on the left, the tabs of the selected one, and the inspector on the right.
FocusScope {
    id: view

    required property TerminalWorkspaceView workspace
    readonly property string tab: workspace.tab
    readonly property bool wide: width >= 1120
    readonly property bool itemOpen: tab === "tasks" && workspace.tasks.item.itemId !== ""
    readonly property alias rail: rail
    readonly property alias head: head
    readonly property alias desk: desk
    readonly property alias surface: surface
    readonly property alias aside: aside
    property tabItem noTab

    function act(command: string) {
        if (command === "newWork")
            workspace.create.begin("item");
        else if (tab === "terminal")
            desk.act(command);
        else if (command === "next" || command === "previous")
            workspace.rail.step(command === "next" ? 1 : -1);
        else if (command === "search")
            rail.focusSearch();
        else if (command === "undo")
            workspace.tasks.board.undo();
        else if (command === "back" && itemOpen)
            workspace.tasks.item.close();
    }

    Component.onCompleted: workspace.shown = true
    Component.onDestruction: workspace.shown = false

    ProjectRail {
        id: rail
        width: view.wide ? 260 : 216
        height: parent.height
        rail: view.workspace.rail
        title: view.workspace.title
        detail: view.workspace.subtitle
        onOpened: id => view.workspace.openProject(id)
    }
    Rectangle {
        id: edge
        anchors.left: rail.right
        width: 1
        height: parent.height
        color: Theme.line
    }
    FocusScope {
        id: head
        anchors.left: edge.right
        anchors.right: aside.visible ? aside.left : parent.right
        height: 44
        Accessible.role: Accessible.PageTabList
        Accessible.name: qsTr("Workspace")

        Row {
            x: Theme.medium
            height: parent.height
            spacing: 2
            Repeater {
                model: view.workspace.tabs.length // the tabs stay while their counts change
                FilterTab {
                    required property int index
                    readonly property tabItem entry: view.workspace.tabs[index] ?? view.noTab
                    objectName: "dev.tab:" + entry.id
                    anchors.verticalCenter: parent.verticalCenter
                    text: entry.label
                    count: entry.count
                    selected: view.tab === entry.id
                    focus: selected
                    onClicked: {
                        view.workspace.tab = entry.id;
                        if (!activeFocus) // pressed with the pointer
                            (desk.visible ? desk : surface).forceActiveFocus(Qt.MouseFocusReason);
                    }
                }
            }
        }
        IconButton {
            objectName: "dev.inspector"
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            size: 28
            icon.name: "view-right-pane"
            text: view.workspace.inspector.collapsed ? qsTr("Show the inspector") : qsTr("Hide the inspector")
            onClicked: view.workspace.inspector.collapsed = !view.workspace.inspector.collapsed
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Theme.line
        }
    }
    Column {
        id: notices
        anchors.top: head.bottom
        spacing: Theme.tight
        anchors.left: head.left
        anchors.right: head.right

        Notice { text: view.workspace.launcher.notice; tone: "warn" }
        Notice {
            text: view.workspace.rail.form.notice
            tone: "warn"
            dismissable: true
            onDismissed: view.workspace.rail.form.dismissNotice()
        }
        Notice {
            text: view.workspace.tasks.notice
            tone: view.workspace.tasks.failed ? "bad" : "plain"
            dismissable: true
            onDismissed: view.workspace.tasks.dismissNotice()
        }
        Notice {
            text: view.workspace.memory.notice
            tone: view.workspace.memory.failed ? "bad" : "plain"
            dismissable: true
            onDismissed: view.workspace.memory.dismissNotice()
        }
        Notice {
            text: view.workspace.assistant.notice
            dismissable: true
            onDismissed: view.workspace.assistant.dismissNotice()
        }
    }
    Item {
        anchors.top: notices.bottom
        anchors.bottom: parent.bottom
        anchors.left: head.left
        anchors.right: head.right

        LauncherBar {
            id: launcher
            width: parent.width
            height: visible ? implicitHeight : 0
            visible: desk.visible
            workspace: view.workspace
        }
        TerminalDesk {
            id: desk
            anchors.fill: parent
            anchors.topMargin: launcher.height
            visible: view.tab === "terminal"
            focus: visible
            screen: view.workspace.terminals
        }
        FocusScope {
            id: surface
            anchors.fill: parent
            visible: !desk.visible
            focus: visible
            Loader {
                anchors.fill: parent
                active: surface.visible
                focus: true
                sourceComponent: view.tab === "assistant" ? assistant : view.tab === "browser" ? browser : view.tab === "srs" ? srs
                    : view.tab === "tasks" ? tasks : view.tab === "team" ? team : view.tab === "memory" ? memory
                    : view.tab === "server" ? server : health
            }
        }
    }
    FocusScope {
        id: aside
        anchors.right: parent.right
        width: view.itemOpen ? 380 : 300
        height: parent.height
        visible: view.itemOpen || (view.wide && !view.workspace.inspector.collapsed)
        onVisibleChanged: if (!visible) (desk.visible ? desk : surface).forceActiveFocus(Qt.OtherFocusReason)
        Accessible.role: Accessible.Pane
        Accessible.name: view.itemOpen ? view.workspace.tasks.item.title : qsTr("Project")

        Rectangle {
            anchors.fill: parent
            color: Theme.surface
        }
        Rectangle {
            width: 1
            height: parent.height
            color: Theme.line
        }
        ItemSheet {
            anchors.fill: parent
            anchors.leftMargin: 1
            visible: view.itemOpen
            focus: visible
            sheet: view.workspace.tasks.item
            hasBrowser: true
            onReportOpened: capture => view.workspace.tasks.openReport(capture)
            onStepsPlayed: capture => view.workspace.tasks.playSteps(capture)
        }
        ProjectInspector {
            anchors.fill: parent
            anchors.leftMargin: 1
            visible: !view.itemOpen
            focus: visible
            workspace: view.workspace
        }
    }

    component Notice: Banner {
        objectName: "dev.notice"
        x: Theme.small
        width: parent ? parent.width - Theme.small * 2 : 0
        visible: text !== ""
    }
    Component { id: assistant; AssistantView { assistant: view.workspace.assistant } }
    Component { id: browser; BrowserPane { focus: true; screen: view.workspace.browser } }
    Component { id: srs; SrsView { srs: view.workspace.srs } }
    Component { id: tasks; TasksView { workspace: view.workspace } }
    Component { id: team; TeamView { workspace: view.workspace } }
    Component { id: memory; MemoryView { memory: view.workspace.memory } }
    Component { id: server; ServerView { server: view.workspace.server } }
    Component { id: health; HealthView { health: view.workspace.health } }

    Toast {
        anchors.horizontalCenter: head.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.wide
        undoName: "dev.undo"
        text: view.workspace.tasks.board.undoText
        onUndone: view.workspace.tasks.board.undo()
        onDismissed: view.workspace.tasks.board.dismissUndo()
    }
    ProjectSheet { project: view.workspace.rail.form }
    CreateSheet { create: view.workspace.create }
    AnswerSheet { asks: view.workspace.rail.projects.asks }

    Connections {
        target: view.workspace.assistant
        function onCopyRequested(text) { WindowTools.copy(text); }
    }
}
