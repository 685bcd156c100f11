import QtQuick
import Corvane.Controls
import Corvane.Work

/// One context: its title and figures, what can be created, and the surface of the selected tab.
FocusScope {
    id: view

    required property WorkModuleShell shell
    property tabItem noTab

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        spacing: Theme.small

        Item {
            width: parent.width
            height: Math.max(titles.height, Theme.control)
            Column {
                id: titles
                width: actions.x - Theme.large
                spacing: 2
                Label {
                    width: parent.width
                    text: view.shell.header.title
                    font.pixelSize: Theme.screen
                    font.weight: Theme.strong
                    Accessible.role: Accessible.Heading
                }
                Label {
                    width: parent.width
                    visible: text !== ""
                    text: view.shell.header.subtitle
                    color: Theme.soft
                }
            }
            Row {
                id: actions
                anchors.right: parent.right
                spacing: Theme.small
                BeginMenu {
                    objectName: "work.actions"
                    shell: view.shell
                    actions: view.shell.header.quickActions
                    exportable: true
                }
                Button {
                    objectName: "work.newItem"
                    kind: "primary"
                    text: qsTr("New item")
                    hint: Commands.keysOf("newWork")
                    onClicked: view.shell.create.begin("item")
                }
            }
        }
        MetricLine {
            width: parent.width
            metrics: view.shell.header.metrics
        }
        Banner {
            width: parent.width
            visible: view.shell.notice !== ""
            text: view.shell.notice
            dismissable: true
            onDismissed: view.shell.dismissNotice()
        }
    }
    Flow {
        id: tabs
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        x: Theme.wide - Theme.small
        width: parent.width - x * 2
        padding: 8
        leftPadding: 0
        rightPadding: 0
        spacing: 2
        Repeater {
            model: view.shell.tabs.length // the tabs stay while their counts change
            FilterTab {
                required property int index
                readonly property tabItem entry: view.shell.tabs[index] ?? view.noTab
                objectName: "work.tab:" + entry.id
                text: entry.label
                count: entry.count
                selected: view.shell.tab === entry.id
                onClicked: view.shell.tab = entry.id
            }
        }
    }
    Rectangle {
        anchors.top: tabs.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
    Item {
        anchors.top: tabs.bottom
        anchors.topMargin: 1
        anchors.bottom: parent.bottom
        width: parent.width

        BoardView {
            anchors.fill: parent
            visible: view.shell.surface === "board"
            board: view.shell.board
            current: view.shell.item.itemId
            onOpened: id => view.shell.item.open(id)
        }
        Loader {
            anchors.fill: parent
            active: view.shell.surface !== "board"
            sourceComponent: view.shell.surface === "chat" ? chat : view.shell.surface === "inbox" ? inbox
                : view.shell.surface === "agents" ? agents : view.shell.surface === "approvals" ? approvals
                : view.shell.surface === "evidence" ? evidence : timeline
        }
    }
    Component {
        id: chat
        ChatView {
            chat: view.shell.chat
            log: view.shell.chat.log
            onSourceOpened: source => view.shell.openSource(source)
        }
    }
    Component {
        id: inbox
        DraftView {
            shell: view.shell
        }
    }
    Component {
        id: agents
        AgentList {
            agents: view.shell.agents
        }
    }
    Component {
        id: approvals
        DecisionList {
            decisions: view.shell.decisions
        }
    }
    Component {
        id: evidence
        EvidenceList {
            model: view.shell.history.evidence
            emptyTitle: qsTr("No evidence yet")
            emptyText: qsTr("Notes, runbooks and what agents attach appear here.")
        }
    }
    Component {
        id: timeline
        TimelineView {
            model: view.shell.history.timeline
            earlierText: view.shell.history.earlierText
            onEarlierAsked: view.shell.history.showEarlier()
        }
    }
}
