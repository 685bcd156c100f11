import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Inbox

/// Search, filter tabs, and the choices of sorting, view, channel and account.
Column {
    id: head

    required property InboxView inbox

    signal leave

    topPadding: Theme.medium
    spacing: Theme.small

    function search() {
        field.forceActiveFocus(Qt.ShortcutFocusReason);
        field.selectAll();
    }

    SearchField {
        id: field
        objectName: "inbox.search"
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        placeholderText: qsTr("Search people and messages")
        text: head.inbox.filters.search
        onTextEdited: head.inbox.filters.search = text
        onCleared: head.inbox.filters.search = ""
        onLeave: head.leave()
    }
    Label {
        objectName: "inbox.searchHint"
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        visible: text !== ""
        wrapMode: Text.Wrap
        maximumLineCount: 3
        text: head.inbox.filters.searchHint
        font.pixelSize: Theme.meta
        color: Theme.soft
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Row {
        x: Theme.medium - Theme.tight
        spacing: 2

        Repeater {
            model: head.inbox.list.tabs.length // the tabs stay while their counts change
            FilterTab {
                id: filter
                required property int index
                readonly property tabItem tab: head.inbox.list.tabs[index]
                objectName: "inbox.filters." + tab.id
                text: tab.label
                count: tab.count
                selected: head.inbox.filters.filter === tab.id
                onClicked: head.inbox.filters.filter = filter.tab.id
            }
        }
    }
    Item {
        x: Theme.medium - Theme.tight
        width: parent.width - Theme.medium * 2 + Theme.tight
        height: 28

        Flow {
            anchors.verticalCenter: parent.verticalCenter
            width: tools.x
            spacing: Theme.tight

            Chip {
                visible: head.inbox.filters.channelFilter !== ""
                removable: true
                mark: head.inbox.filters.channelFilter
                text: head.inbox.filters.channelFilterLabel
                onClicked: head.inbox.filters.channelFilter = ""
            }
            Chip {
                visible: head.inbox.filters.accountFilter !== ""
                removable: true
                text: head.inbox.filters.accountFilterLabel
                onClicked: head.inbox.filters.accountFilter = ""
            }
            MenuButton {
                objectName: "inbox.sort"
                visible: head.inbox.filters.channelFilter === "" && head.inbox.filters.accountFilter === ""
                icon.name: "view-sort"
                text: head.inbox.filters.sort === "unread" ? qsTr("Unread first") : qsTr("Newest first")
                hint: qsTr("Order of the list")
                MenuItem {
                    text: qsTr("Newest first")
                    checkable: true
                    checked: head.inbox.filters.sort === "recent"
                    onTriggered: head.inbox.filters.sort = "recent"
                }
                MenuItem {
                    text: qsTr("Unread first")
                    checkable: true
                    checked: head.inbox.filters.sort === "unread"
                    onTriggered: head.inbox.filters.sort = "unread"
                }
            }
        }
        Row {
            id: tools
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter

            IconButton {
                objectName: "inbox.newMessage"
                size: 28
                iconSize: 16
                icon.name: "list-add"
                text: head.inbox.composeSheet.title
                key: Commands.keysOf("newMessage")
                onClicked: head.inbox.composeSheet.open()
            }
            IconButton {
                objectName: "inbox.view"
                size: 28
                iconSize: 16
                icon.name: "view-calendar"
                checked: head.inbox.filters.viewMode === "messages"
                text: qsTr("Group by day")
                onClicked: head.inbox.filters.viewMode = head.inbox.filters.viewMode === "messages" ? "contacts" : "messages"
            }
            IconButton {
                id: narrow
                objectName: "inbox.narrow"
                size: 28
                iconSize: 16
                icon.name: "filter"
                checked: head.inbox.filters.channelFilter !== "" || head.inbox.filters.accountFilter !== ""
                text: qsTr("Channels and accounts")
                Accessible.role: Accessible.ButtonMenu
                onClicked: choices.popup(narrow, narrow.width - choices.width, narrow.height + Theme.tight)
            }
            IconButton {
                id: more
                objectName: "inbox.more"
                size: 28
                iconSize: 16
                icon.name: "overflow-menu"
                text: qsTr("More")
                Accessible.role: Accessible.ButtonMenu
                onClicked: actions.popup(more, more.width - actions.width, more.height + Theme.tight)
            }
        }
    }

    Menu {
        id: choices
        Instantiator {
            model: head.inbox.filters.channelChoices
            delegate: MenuItem {
                required property choice modelData
                icon.name: "channel-" + modelData.id.toLowerCase()
                text: modelData.label
                onTriggered: head.inbox.filters.channelFilter = modelData.id
            }
            onObjectAdded: (index, item) => choices.insertItem(index, item)
            onObjectRemoved: (index, item) => choices.removeItem(item)
        }
        MenuSeparator {}
        Instantiator {
            model: head.inbox.filters.accountChoices
            delegate: MenuItem {
                required property choice modelData
                icon.name: "user"
                text: modelData.label
                onTriggered: head.inbox.filters.accountFilter = modelData.id
            }
            onObjectAdded: (index, item) => choices.addItem(item)
            onObjectRemoved: (index, item) => choices.removeItem(item)
        }
    }
    Menu {
        id: actions
        MenuItem {
            icon.name: "mail-mark-read"
            text: qsTr("Mark all as read")
            onTriggered: head.inbox.actions.markAllRead()
        }
        MenuItem {
            icon.name: "select"
            text: qsTr("Pick all")
            key: Commands.keysOf("checkAll")
            onTriggered: head.inbox.actions.bulk.all()
        }
    }
}
