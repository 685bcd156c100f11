import QtQuick
import Corvane

/// A hub whose room is not furnished yet: what it is for, and what will stand in it.
Page {
    id: page

    required property string hub
    required property string label

    signal openInbox

    readonly property var plans: ({
        lumo: { line: qsTr("The assistant's desk: answers and drafts made from what this machine holds."),
            parts: [qsTr("Questions about any conversation, answered with sources"), qsTr("What it knows, and what it may use"), qsTr("Agents and flows, and what they did")] },
        gtm: { line: qsTr("Going to market: who might buy, and what happens next."),
            parts: [qsTr("Deals by stage, beside the people they belong to"), qsTr("Campaigns and their replies"), qsTr("Tasks that move a deal on")] },
        cx: { line: qsTr("Customers: who needs help, and how it goes."),
            parts: [qsTr("Open requests over every channel"), qsTr("Promises made, and when they are due"), qsTr("What customers keep asking")] },
        ops: { line: qsTr("Operations: projects, their updates, and the questions that wait for you."),
            parts: [qsTr("Projects with their state at a glance"), qsTr("Updates as they come in"), qsTr("Decisions that only you can take")] },
        dev: { line: qsTr("Development: terminals, a browser for checks, and the agents at work."),
            parts: [qsTr("A terminal for each project"), qsTr("Evidence from the browser, and the bugs filed with it"), qsTr("Agents, and what they are doing")] }
    })
    readonly property var plan: plans[hub] ?? { line: "", parts: [] }

    panes: [desk]

    FocusScope {
        id: desk
        anchors.fill: parent
        focus: true

        Column {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -Theme.huge
            width: 420
            spacing: Theme.wide

            EmptyState {
                width: parent.width
                icon: "hub-" + page.hub
                title: page.label
                detail: page.plan.line
            }
            Card {
                width: parent.width
                SectionHeader { text: qsTr("What will stand here") }
                Repeater {
                    model: page.plan.parts
                    Row {
                        id: part
                        required property string modelData
                        spacing: Theme.small
                        Rectangle {
                            width: 5
                            height: 5
                            radius: 3
                            anchors.verticalCenter: parent.verticalCenter
                            color: Theme.faint
                        }
                        Label {
                            text: part.modelData
                            color: Theme.soft
                        }
                    }
                }
            }
            Button {
                anchors.horizontalCenter: parent.horizontalCenter
                focus: true
                kind: "quiet"
                text: qsTr("Back to the inbox")
                icon.name: "hub-inbox"
                onClicked: page.openInbox()
            }
        }
    }
}
