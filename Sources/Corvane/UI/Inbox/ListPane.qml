import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The people, with the ways to narrow them down above.
FocusScope {
    id: pane

    required property InboxView inbox

    signal entered ///< Return on a row: on into its thread
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
        readonly property bool filled: pane.inbox.workspaceNotice !== "" || pane.inbox.stalenessBanners.length > 0
        topPadding: filled ? Theme.tight : 0
        bottomPadding: Theme.small

        Banner {
            visible: text !== ""
            width: parent.width
            text: pane.inbox.workspaceNotice
            dismissable: true
            onDismissed: pane.inbox.dismissWorkspaceNotice()
        }
        Repeater {
            model: pane.inbox.stalenessBanners
            Banner {
                required property stalenessBanner modelData
                width: notices.width
                tone: "warn"
                text: modelData.text
                action: qsTr("Retry")
                onActed: pane.inbox.retry(modelData.channel)
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
            visible: !pane.inbox.isEmpty
            inbox: pane.inbox
            onEntered: pane.entered()
        }
        Button {
            objectName: "inbox.newAbove"
            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.small
            visible: text !== ""
            icon.name: "go-up"
            text: pane.inbox.newAbove
            onClicked: rows.toTop()
        }
        Skeleton {
            width: parent.width
            active: pane.inbox.loading
        }
        EmptyState {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -Theme.wide
            width: parent.width - Theme.huge * 2
            visible: pane.inbox.isEmpty && !pane.inbox.loading
            icon: pane.inbox.search ? "edit-find" : pane.inbox.filter === "archived" ? "mail-archive" : "hub-inbox"
            title: pane.inbox.emptyTitle
            detail: pane.inbox.emptyDetail
            action: pane.inbox.emptyCanClear ? qsTr("Clear") : pane.inbox.emptyDetail ? qsTr("Open Accounts") : ""
            onActed: {
                if (pane.inbox.emptyCanClear)
                    pane.inbox.clearActiveEmptyFilter();
                else
                    pane.openSettings();
            }
        }
    }
    BulkBar {
        id: bulk
        anchors.bottom: parent.bottom
        width: parent.width
        inbox: pane.inbox
    }
}
