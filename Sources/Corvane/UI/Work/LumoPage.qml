import QtQuick
import Corvane.Controls
import Corvane.Work

/// The assistant's hub: knowledge, agents and flows.
WorkPage {
    id: page

    required property LumoHub screen

    shell: screen.shell
    placeView: Component {
        FocusScope {
            Loader {
                anchors.fill: parent
                focus: true
                sourceComponent: page.shell.place === "agents" ? agents : page.shell.place === "flows" ? flows : knowledge
            }
        }
    }

    Component { id: knowledge; KnowledgeView { hub: page.screen } }
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
                agents: page.screen.agents
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
                    onClicked: {
                        page.shell.create.begin("note");
                        page.shell.create.kind = "runbook";
                    }
                }
            }
            EvidenceList {
                anchors.fill: parent
                anchors.topMargin: flowsHead.height + Theme.large
                focus: true
                model: page.screen.flows
                emptyTitle: qsTr("No runbooks yet")
                emptyText: page.screen.flowsEmpty
            }
        }
    }
}
