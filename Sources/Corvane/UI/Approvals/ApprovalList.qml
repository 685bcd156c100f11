import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Controls

/// Everything that waits for a person, under the head of its kind. Up and Down walk over it, Ctrl+Return approves, F2
/// edits, Delete rejects, Ctrl+Z takes either back, Space unfolds a long text.
FocusScope {
    id: list

    required property ApprovalsView approvals
    property int sideMargin: Theme.medium
    property alias count: rows.count
    readonly property real fullHeight: rows.contentHeight + rows.topMargin + rows.bottomMargin

    function step(by: int) {
        if (count > 0)
            rows.currentIndex = Math.max(0, Math.min(count - 1, rows.currentIndex + by));
    }
    function undoCurrent() {
        if (rows.currentItem)
            approvals.undo((rows.currentItem as ApprovalLine).approval.key);
    }

    // Scrolls the item being asked about into view, whatever caused the question.
    function showAsked() {
        if (approvals.askingRow < 0)
            return;
        rows.currentIndex = approvals.askingRow;
        rows.positionViewAtIndex(rows.currentIndex, ListView.Contain);
        (rows.currentItem as ApprovalLine).focusQuestion();
    }
    Component.onCompleted: Qt.callLater(showAsked)
    Connections {
        target: list.approvals.askingRow >= 0 ? rows.currentItem : null
        function onHeightChanged() { // by the question
            rows.positionViewAtIndex(rows.currentIndex, ListView.Contain);
        }
    }
    Connections {
        target: list.approvals
        function onAskingChanged() {
            Qt.callLater(list.showAsked);
        }
    }

    objectName: "approvals.list"

    Keys.onPressed: event => {
        const line = rows.currentItem as ApprovalLine;
        if (!line || approvals.asking !== "" || approvals.editor.draftId !== "" || approvals.link.subject !== "")
            return;
        event.accepted = true;
        if (event.key === Qt.Key_Down)
            step(1);
        else if (event.key === Qt.Key_Up)
            step(-1);
        else if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && event.modifiers & Qt.ControlModifier)
            approvals.approve(line.approval.key);
        else if (event.key === Qt.Key_F2)
            approvals.edit(line.approval.key);
        else if (event.key === Qt.Key_Delete)
            approvals.reject(line.approval.key);
        else if (event.key === Qt.Key_Z && event.modifiers & Qt.ControlModifier)
            undoCurrent();
        else if (event.key === Qt.Key_Space)
            line.toggleText();
        else
            event.accepted = false;
    }

    // Not the root: its property "section" would hide that of the headings, which would keep an old text.
    ListView {
        id: rows
        anchors.fill: parent
        focus: true
        model: list.approvals.rows
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
        KeyboardFocus { id: keyboard; target: rows }
        HoverHandler { onHoveredChanged: list.approvals.rows.pointerInside = hovered }

        section.property: "head"
        section.delegate: SectionHeader {
            required property string section
            width: ListView.view.width
            leftPadding: list.sideMargin + 2
            topPadding: Theme.small
            bottomPadding: Theme.small
            text: list.approvals.heads.title(section)
            Accessible.name: text
        }
        delegate: ApprovalLine {
            x: list.sideMargin
            width: ListView.view.width - list.sideMargin * 2
            approvals: list.approvals
            ringed: keyboard.shown && ListView.isCurrentItem
            onActiveFocusChanged: if (activeFocus) rows.currentIndex = index
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
    }
    EmptyState {
        objectName: "approvals.empty"
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -Theme.wide
        width: Math.min(360, parent.width - Theme.huge * 2)
        visible: list.count === 0
        icon: "approvals"
        title: list.approvals.emptyTitle
        detail: list.approvals.emptyText
    }
    // Above the footer: at the top it would move every button.
    Banner {
        objectName: "approvals.notice"
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.medium
        x: list.sideMargin
        width: parent.width - list.sideMargin * 2
        visible: text !== ""
        tone: "warn"
        text: list.approvals.notice
        dismissable: true
        onDismissed: list.approvals.dismissNotice()
    }
}
