import QtQuick
import Corvane.Approvals
import Corvane.Controls

/// The screen where messages, CRM updates and decisions wait together, whether the desktop has a tray or not, and what
/// was decided.
Page {
    id: page

    required property ApprovalsView approvals
    readonly property bool decided: approvals.log.shown

    function act(command: string) {
        if (command === "next" || command === "previous")
            step(command === "next" ? 1 : -1);
        else if (command === "undo")
            (content.item as ApprovalList)?.undoCurrent();
        else if (command === "back" && !approvals.stepBack())
            leave();
    }

    function step(by: int) {
        (content.item as ApprovalList)?.step(by);
        (content.item as DecidedList)?.step(by);
    }

    panes: [desk]
    Component.onCompleted: approvals.refresh()
    Component.onDestruction: approvals.log.shown = false

    FocusScope {
        id: desk
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("Approvals")

        Item {
            id: top
            anchors.horizontalCenter: parent.horizontalCenter
            width: content.width - Theme.medium * 2
            height: title.height + Theme.huge + Theme.small
            Label {
                id: title
                y: Theme.huge
                text: qsTr("Approvals")
                font.pixelSize: Theme.screen
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: title.verticalCenter
                spacing: Theme.tight
                Accessible.role: Accessible.PageTabList
                Accessible.name: qsTr("Views")
                FilterTab {
                    objectName: "approvals.waitingTab"
                    text: qsTr("Waiting")
                    count: page.approvals.waiting
                    selected: !page.decided
                    onClicked: page.approvals.log.shown = false
                }
                FilterTab {
                    objectName: "approvals.decidedTab"
                    text: qsTr("Decided")
                    selected: page.decided
                    onClicked: page.approvals.log.shown = true
                }
            }
        }
        Loader {
            id: content
            anchors.top: top.bottom
            anchors.bottom: parent.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(760 + Theme.medium * 2, parent.width - Theme.huge)
            focus: true
            sourceComponent: page.decided ? log : waiting
        }
    }
    Component {
        id: waiting
        ApprovalList {
            focus: true
            approvals: page.approvals
        }
    }
    Component {
        id: log
        DecidedList {
            focus: true
            log: page.approvals.log
        }
    }
}
