import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The people, with the ways to narrow them down above.
FocusScope {
    id: pane

    required property InboxView inbox

    signal entered ///< Return on a row: moves into its thread
    signal openSettings

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Conversations")

    function search() {
        head.search();
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    ListHead {
        id: head
        width: parent.width
        inbox: pane.inbox
        onLeave: rows.forceActiveFocus(Qt.TabFocusReason)
    }
    Column {
        id: notices
        anchors.top: head.bottom
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        spacing: Theme.small
        readonly property bool filled: pane.inbox.notices.workspaceNotice !== "" || pane.inbox.notices.stalenessBanners.length > 0
        topPadding: filled ? Theme.tight : 0
        bottomPadding: Theme.small

        Banner {
            visible: text !== ""
            width: parent.width
            text: pane.inbox.notices.workspaceNotice
            dismissable: true
            onDismissed: pane.inbox.notices.dismissWorkspaceNotice()
        }
        Repeater {
            model: pane.inbox.notices.stalenessBanners
            Banner {
                required property stalenessBanner modelData
                width: notices.width
                tone: "warn"
                text: modelData.text
                action: qsTr("Retry")
                onActed: pane.inbox.notices.retry(modelData.channel)
            }
        }
    }
    Rectangle {
        anchors.bottom: body.top
        width: parent.width
        height: 1
        color: Theme.line
    }

    Item {
        id: body
        anchors.top: notices.bottom
        anchors.bottom: bulk.top
        width: parent.width

        ContactList {
            id: rows
            anchors.fill: parent
            focus: true
            visible: !pane.inbox.list.isEmpty
            inbox: pane.inbox
            onEntered: pane.entered()
        }
        Button {
            objectName: "inbox.newAbove"
            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.small
            visible: text !== ""
            icon.name: "go-up"
            text: pane.inbox.list.newAbove
            onClicked: rows.toTop()
        }
        Skeleton {
            width: parent.width
            active: pane.inbox.list.loading
        }
        EmptyState {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -Theme.wide
            width: parent.width - Theme.huge * 2
            visible: pane.inbox.list.isEmpty && !pane.inbox.list.loading
            icon: pane.inbox.filters.search ? "edit-find" : pane.inbox.filters.filter === "archived" ? "mail-archive" : "hub-inbox"
            title: pane.inbox.filters.emptyTitle
            detail: pane.inbox.filters.emptyDetail
            action: pane.inbox.filters.emptyCanClear ? qsTr("Clear") : pane.inbox.filters.emptyDetail ? qsTr("Open Accounts") : ""
            onActed: {
                if (pane.inbox.filters.emptyCanClear)
                    pane.inbox.filters.clearActiveEmptyFilter();
                else
                    pane.openSettings();
            }
        }
    }
    BulkBar {
        id: bulk
        anchors.bottom: parent.bottom
        width: parent.width
        actions: pane.inbox.actions
    }
}
