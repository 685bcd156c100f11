import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// Who works on the project: terminals of agents and orders for them, questions, and registered agents.
FocusScope {
    id: view

    required property TerminalWorkspaceView workspace
    readonly property OpsProjects projects: workspace.rail.projects
    property choice noTool

    Flickable {
        id: scroll
        objectName: "dev.team"
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
            y: Theme.medium
            width: Math.min(parent.width - Theme.wide * 2, 760)
            spacing: Theme.small

            SectionHeader { text: qsTr("Terminals of agents") }
            Label {
                visible: view.projects.tabs.count === 0
                text: qsTr("No terminal reports to this project.")
                color: Theme.faint
            }
            Repeater {
                model: view.projects.tabs
                TabLine {
                    width: column.width
                    chosen: view.projects.orderTab === tab.id
                    onClicked: view.projects.orderTab = tab.id
                }
            }
            OrderBox {
                width: parent.width
                visible: view.projects.orderTab !== ""
                projects: view.projects
            }
            Repeater {
                model: view.projects.orders
                DetailLine { width: column.width }
            }
            Item {
                width: parent.width
                height: newAsk.height + Theme.medium
                SectionHeader {
                    anchors.bottom: parent.bottom
                    text: qsTr("Asks")
                }
                Button {
                    id: newAsk
                    objectName: "dev.newAsk"
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    text: qsTr("New ask")
                    onClicked: view.workspace.create.begin("ask")
                }
            }
            Label {
                visible: view.projects.asks.asks.count === 0
                text: view.projects.asks.emptyTitle
                color: Theme.faint
            }
            Repeater {
                model: view.projects.asks.asks
                AskCard {
                    width: column.width
                    onAnswerPressed: view.projects.asks.beginAnswer(ask.id)
                }
            }
            SectionHeader { topPadding: Theme.medium; text: qsTr("Agents") }
            Row {
                spacing: Theme.small
                Repeater {
                    model: view.workspace.team.tools.length
                    Button {
                        required property int index
                        readonly property choice entry: view.workspace.team.tools[index] ?? view.noTool
                        objectName: "dev.register:" + entry.id
                        text: qsTr("Register %1").arg(entry.label)
                        onClicked: view.workspace.team.registerAgent(entry.id)
                    }
                }
                Button {
                    visible: view.workspace.team.agents.canLaunch
                    kind: "quiet"
                    text: qsTr("Prepare an agent")
                    onClicked: view.workspace.team.agents.launch()
                }
            }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: view.workspace.team.error || view.workspace.team.agents.error
                color: Theme.bad
            }
            LaunchCard {
                width: parent.width
                visible: view.workspace.team.agents.banner !== ""
                agents: view.workspace.team.agents
            }
            Repeater {
                model: view.workspace.team.agents.agents
                AgentLine { width: column.width }
            }
        }
    }
}
