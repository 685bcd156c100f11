import QtQuick
import QtQuick.Templates as T
import Corvane

/// Everything that waits for a person, under the head of its kind. Up and Down walk over it, Ctrl+Return approves,
/// F2 edits, Delete rejects, Space shows a long text whole.
ListView {
    id: list

    required property QtObject approvals
    property int sideMargin: Theme.medium

    function step(by: int) {
        if (count > 0)
            currentIndex = Math.max(0, Math.min(count - 1, currentIndex + by));
    }
    function undoCurrent() {
        if (currentItem)
            approvals.undo(currentItem.key);
    }

    objectName: "approvals.list"
    model: approvals.rows
    clip: true
    spacing: Theme.small
    boundsBehavior: Flickable.StopAtBounds
    topMargin: Theme.small
    bottomMargin: Theme.large
    highlightMoveDuration: 0
    keyNavigationEnabled: false
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Approvals")
    T.ScrollBar.vertical: ScrollBar {}
    KeyboardFocus { id: keyboard; target: list }

    Keys.onPressed: event => {
        if (!currentItem || approvals.editing !== "" || approvals.link.proposalId !== "")
            return;
        const key = currentItem.key;
        event.accepted = true;
        if (event.key === Qt.Key_Down)
            step(1);
        else if (event.key === Qt.Key_Up)
            step(-1);
        else if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && event.modifiers & Qt.ControlModifier)
            approvals.approve(key);
        else if (event.key === Qt.Key_F2)
            approvals.edit(key);
        else if (event.key === Qt.Key_Delete)
            approvals.reject(key);
        else if (event.key === Qt.Key_Z && event.modifiers & Qt.ControlModifier)
            undoCurrent();
        else if (event.key === Qt.Key_Space)
            currentItem.toggleText();
        else
            event.accepted = false;
    }

    header: Item {
        width: list.width
        implicitHeight: notice.visible ? notice.implicitHeight + Theme.small : 0
        Banner {
            id: notice
            objectName: "approvals.notice"
            x: list.sideMargin
            width: parent.width - list.sideMargin * 2
            visible: text !== ""
            tone: "warn"
            text: list.approvals.notice
            dismissable: true
            onDismissed: list.approvals.dismissNotice()
        }
    }
    section.property: "head"
    section.delegate: SectionHeader {
        required property string section
        width: ListView.view.width
        leftPadding: list.sideMargin + 2
        topPadding: Theme.small
        bottomPadding: Theme.small
        text: section + "  " + (list.approvals.headCounts[section] ?? "")
        Accessible.name: text
    }
    delegate: ApprovalLine {
        x: list.sideMargin
        width: ListView.view.width - list.sideMargin * 2
        approvals: list.approvals
        ringed: keyboard.shown && ListView.isCurrentItem
        onActiveFocusChanged: if (activeFocus) list.currentIndex = index
    }
    footer: Column {
        width: list.width
        visible: list.count > 0
        topPadding: Theme.large
        spacing: Theme.tight
        Repeater {
            model: list.count > 0 ? list.approvals.emptyLines : []
            Label {
                required property string modelData
                x: list.sideMargin + 2
                text: modelData
                color: Theme.faint
            }
        }
    }
    EmptyState {
        objectName: "approvals.empty"
        parent: list
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -Theme.wide
        width: Math.min(360, parent.width - Theme.huge * 2)
        visible: list.count === 0
        icon: "approvals"
        title: list.approvals.emptyTitle
        detail: list.approvals.emptyText
    }
}
