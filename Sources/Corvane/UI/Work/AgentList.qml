import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Agents with their heartbeats, and the launch of another one.
FocusScope {
    id: view

    required property WorkAgents agents

    Column {
        id: launch
        x: Theme.wide
        y: Theme.medium
        width: parent.width - Theme.wide * 2
        spacing: Theme.small

        Row {
            spacing: Theme.small
            visible: view.agents.canLaunch
            Button {
                objectName: "agents.launch"
                text: qsTr("Prepare an agent")
                onClicked: view.agents.launch()
            }
        }
        Banner {
            width: parent.width
            visible: view.agents.error !== ""
            tone: "bad"
            text: view.agents.error
        }
        LaunchCard {
            width: parent.width
            visible: view.agents.banner !== ""
            agents: view.agents
        }
    }
    ListView {
        id: list
        objectName: "agents.list"
        anchors.top: launch.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        focus: true
        clip: true
        spacing: Theme.small
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.agents.agents
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Agents")
        T.ScrollBar.vertical: ScrollBar {}
        delegate: AgentLine {
            width: ListView.view.width
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
    EmptyState {
        anchors.centerIn: list
        width: Math.min(380, parent.width)
        visible: list.count === 0
        icon: "computer"
        title: qsTr("No agents yet")
        detail: view.agents.emptyText
    }
}
