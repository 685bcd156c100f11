import QtQuick
import Corvane.Controls
import Corvane.Work

/// The assistant's hub: knowledge, agents and flows.
WorkPage {
    id: page

    required property LumoHub hub
    property Component consoleView ///< shown at the place "console"

    shell: hub.shell
    placeView: Component {
        FocusScope {
            Loader {
                anchors.fill: parent
                focus: true
                sourceComponent: page.shell.rail.place === "agents" ? agents : page.shell.rail.place === "flows" ? flows
                    : page.shell.rail.place === "console" ? page.consoleView : knowledge
            }
        }
    }

    Component { id: knowledge; KnowledgeView { hub: page.hub } }
    Component {
        id: agents
        FocusScope {
            PlaceHead {
                id: agentsHead
                x: Theme.wide
                y: Theme.large
                width: parent.width - Theme.wide * 2
                title: qsTr("Agents")
            }
            AgentList {
                anchors.fill: parent
                anchors.topMargin: agentsHead.height + Theme.large
                focus: true
                agents: page.hub.agents
            }
        }
    }
    Component {
        id: flows
        FocusScope {
            PlaceHead {
                id: flowsHead
                x: Theme.wide
                y: Theme.large
                width: parent.width - Theme.wide * 2
                title: qsTr("Flows")
                Button {
                    objectName: "flows.new"
                    kind: "primary"
                    text: qsTr("New runbook")
                    onClicked: page.shell.create.begin("note", "runbook")
                }
            }
            EvidenceList {
                anchors.fill: parent
                anchors.topMargin: flowsHead.height + Theme.large
                focus: true
                model: page.hub.flows
                emptyTitle: qsTr("No runbooks yet")
                emptyText: page.hub.flowsEmpty
            }
        }
    }
}
