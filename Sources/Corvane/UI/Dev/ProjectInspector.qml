import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// Around the selected project: who works on it, what is open, what was reported, and its facts.
FocusScope {
    id: view

    required property TerminalWorkspaceView workspace
    readonly property DevInspector inspector: workspace.inspector
    readonly property string tab: inspector.tab
    readonly property OpsProjects projects: workspace.rail.projects
    property tabItem noTab
    property choice noFact

    Row {
        id: tabs
        x: Theme.medium
        height: 44
        spacing: 2
        Repeater {
            model: view.inspector.tabs.length
            FilterTab {
                required property int index
                readonly property tabItem entry: view.inspector.tabs[index] ?? view.noTab
                objectName: "dev.side:" + entry.id
                anchors.verticalCenter: parent.verticalCenter
                text: entry.label
                selected: view.tab === entry.id
                onClicked: view.inspector.tab = entry.id
            }
        }
    }
    Flickable {
        id: scroll
        anchors.top: tabs.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
        contentHeight: column.height + Theme.large
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }

        Column {
            id: column
            x: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.small

            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                color: Theme.faint
                text: view.tab === "team" && view.projects.tabs.count + view.workspace.team.agents.agents.count === 0 ? qsTr("Nobody works on this project yet.")
                    : view.tab === "tasks" && view.workspace.tasks.open.count === 0 ? qsTr("No open task.")
                    : view.tab === "activity" && view.projects.updates.count === 0 ? qsTr("No updates yet.") : ""
            }
            Repeater {
                model: view.tab === "team" ? view.projects.tabs : null
                TabLine {
                    width: column.width
                    onClicked: {
                        view.projects.orderTab = tab.id;
                        view.workspace.tab = "team";
                    }
                }
            }
            Repeater {
                model: view.tab === "team" ? view.workspace.team.agents.agents : null
                AgentLine {
                    width: column.width
                    compact: true
                }
            }
            Repeater {
                model: view.tab === "tasks" ? view.workspace.tasks.open : null
                ItemLine {
                    width: column.width
                    onClicked: view.workspace.showItem(item.id)
                }
            }
            Repeater {
                model: view.tab === "activity" ? view.projects.updates : null
                DetailLine { width: column.width }
            }
            Repeater {
                model: view.tab === "context" ? view.workspace.facts.length : 0
                Column {
                    id: fact
                    required property int index
                    readonly property choice entry: view.workspace.facts[index] ?? view.noFact
                    width: column.width
                    spacing: 2
                    Label { text: fact.entry.id; font.pixelSize: Theme.meta; color: Theme.faint }
                    Label {
                        width: parent.width
                        wrapMode: Text.Wrap
                        text: fact.entry.label
                    }
                }
            }
        }
    }
}
