import QtQuick
import Corvane

/// The screen where messages, CRM updates and decisions wait together, whether the desktop has a tray or not.
Page {
    id: page

    required property QtObject approvals

    signal leave

    function act(command: string) {
        if (command === "next" || command === "previous")
            list.step(command === "next" ? 1 : -1);
        else if (command === "undo")
            list.undoCurrent();
        else if (command === "back" && !approvals.stepBack())
            leave();
    }

    panes: [desk]
    Component.onCompleted: approvals.refresh()

    FocusScope {
        id: desk
        anchors.fill: parent
        focus: true
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("Approvals")

        Item {
            id: top
            anchors.horizontalCenter: parent.horizontalCenter
            width: list.width - list.sideMargin * 2
            height: title.height + Theme.huge + Theme.small
            Label {
                id: title
                y: Theme.huge
                text: qsTr("Approvals")
                font.pixelSize: Theme.screen
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
            }
            Label {
                anchors.right: parent.right
                anchors.baseline: title.baseline
                visible: page.approvals.count > 0
                text: page.approvals.waitingText
                color: Theme.soft
            }
        }
        ApprovalList {
            id: list
            anchors.top: top.bottom
            anchors.bottom: parent.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(760 + sideMargin * 2, parent.width - Theme.huge)
            focus: true
            approvals: page.approvals
        }
    }
}
