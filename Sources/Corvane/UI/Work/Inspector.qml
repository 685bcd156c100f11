import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Around a context: who works in it, what is waiting, what was recorded, and which rules apply.
FocusScope {
    id: view

    required property WorkModuleShell shell
    property string tab: "team"
    property workAction noAction

    Row {
        id: tabs
        x: Theme.medium
        height: 48
        spacing: 2
        Repeater {
            model: ListModel {
                ListElement { name: "team"; label: qsTr("Team") }
                ListElement { name: "tasks"; label: qsTr("Tasks") }
                ListElement { name: "evidence"; label: qsTr("Evidence") }
                ListElement { name: "safety"; label: qsTr("Safety") }
            }
            FilterTab {
                required property string name
                required property string label
                objectName: "inspector." + name
                anchors.verticalCenter: parent.verticalCenter
                text: label
                selected: view.tab === name
                onClicked: view.tab = name
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

            Repeater {
                model: view.tab === "team" ? view.shell.agents.agents : null
                AgentLine {
                    width: column.width
                    compact: true
                }
            }
            Label {
                width: parent.width
                visible: view.tab === "team" && view.shell.agents.agents.count === 0
                wrapMode: Text.Wrap
                text: view.shell.agents.emptyText
                color: Theme.faint
            }
            Button {
                objectName: "inspector.launch"
                visible: view.tab === "team" && view.shell.agents.canLaunch && view.shell.agents.banner === ""
                text: qsTr("Prepare an agent")
                onClicked: view.shell.agents.launch()
            }
            LaunchCard {
                width: parent.width
                visible: view.tab === "team" && view.shell.agents.banner !== ""
                agents: view.shell.agents
            }
            Repeater {
                model: view.tab === "tasks" ? view.shell.header.quickActions.length : 0
                T.AbstractButton {
                    id: quick
                    required property int index
                    readonly property workAction entry: view.shell.header.quickActions[index] ?? view.noAction
                    objectName: "quick:" + entry.title
                    width: column.width
                    implicitHeight: 48
                    hoverEnabled: true
                    focusPolicy: Qt.StrongFocus
                    text: entry.title
                    Accessible.name: entry.title
                    Accessible.description: entry.subtitle
                    Keys.onReturnPressed: clicked()
                    onClicked: view.shell.create.beginQuickAction(entry.title, entry.subtitle)
                    background: Rectangle {
                        radius: Theme.controlRadius
                        color: quick.hovered ? Theme.raised : Theme.surface
                        border.width: 1
                        border.color: Theme.line
                        FocusRing { control: quick }
                    }
                    contentItem: Item {
                        Icon {
                            id: sign
                            x: Theme.medium
                            anchors.verticalCenter: parent.verticalCenter
                            name: quick.entry.icon
                        }
                        Column {
                            anchors.left: sign.right
                            anchors.leftMargin: Theme.medium
                            anchors.verticalCenter: parent.verticalCenter
                            Label { text: quick.entry.title; Accessible.ignored: true }
                            Label {
                                text: quick.entry.subtitle
                                font.pixelSize: Theme.meta
                                color: Theme.faint
                                Accessible.ignored: true
                            }
                        }
                    }
                }
            }
            Label {
                width: parent.width
                visible: view.tab === "tasks" && view.shell.header.quickActions.length === 0
                wrapMode: Text.Wrap
                text: qsTr("No quick actions yet. They appear when a context is selected.")
                color: Theme.faint
            }
            SectionHeader {
                topPadding: Theme.medium
                visible: view.tab === "tasks" && view.shell.tasks.count > 0
                text: qsTr("Open")
            }
            Repeater {
                model: view.tab === "tasks" ? view.shell.tasks : null
                ItemLine {
                    width: column.width
                    focusPolicy: Qt.StrongFocus
                    onClicked: view.shell.item.open(item.id)
                }
            }
            Repeater {
                model: view.tab === "evidence" ? view.shell.history.evidence : null
                EvidenceCard {
                    width: column.width
                }
            }
            Label {
                width: parent.width
                visible: view.tab === "evidence" && view.shell.history.evidence.count === 0
                wrapMode: Text.Wrap
                text: qsTr("No evidence yet.")
                color: Theme.faint
            }
            SectionHeader {
                visible: view.tab === "safety"
                text: qsTr("SAFETY")
            }
            Repeater {
                model: view.tab === "safety" ? view.shell.agents.safety : []
                Column {
                    id: rule
                    required property choice modelData
                    width: column.width
                    spacing: 2
                    Label { text: rule.modelData.id; font.weight: Theme.strong }
                    Label {
                        width: parent.width
                        wrapMode: Text.Wrap
                        text: rule.modelData.label
                        color: Theme.soft
                    }
                }
            }
            Repeater {
                model: view.tab === "safety" ? view.shell.decisions.decisions : null
                DecisionCard {
                    width: column.width
                    onDecided: approve => view.shell.decisions.decide(decision.id, approve)
                }
            }
        }
    }
}
