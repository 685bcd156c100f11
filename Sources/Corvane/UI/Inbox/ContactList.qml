import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// The rows of people, and under them the messages and records that a search found.
ListView {
    id: list

    required property InboxView inbox

    signal entered

    objectName: "inbox.list"
    clip: true
    model: inbox.list.contacts
    reuseItems: true
    boundsBehavior: Flickable.StopAtBounds
    highlightFollowsCurrentItem: false
    keyNavigationEnabled: false
    cacheBuffer: Theme.row * 4
    topMargin: Theme.tight
    bottomMargin: Theme.tight
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Conversations")
    T.ScrollBar.vertical: ScrollBar {}
    KeyboardFocus { id: keyboard; target: list }
    RevealFocus { view: list }

    // The current row is the open conversation. It is scrolled into view when another one is opened, not when new
    // messages move it.
    currentIndex: inbox.list.selectedIndex
    Connections {
        target: list.inbox.person
        function onSelectionChanged() {
            if (list.inbox.list.selectedIndex >= 0)
                list.positionViewAtIndex(list.inbox.list.selectedIndex, ListView.Contain);
        }
    }

    // At the top, new rows are shown; elsewhere the scroll position is kept.
    property bool atTop: true
    onContentYChanged: atTop = contentY <= originY + 1
    Binding { target: list.inbox.list; property: "atTop"; value: list.atTop }
    function toTop() {
        contentY = originY - topMargin;
    }
    Connections {
        target: list.inbox.list
        function onChanged() {
            if (!list.atTop)
                return;
            list.forceLayout();
            list.toTop();
        }
    }

    readonly property bool hasResults: inbox.list.results.messagesShown || inbox.list.results.records.count > 0
    Keys.onDownPressed: {
        if (hasResults && inbox.list.selectedIndex === count - 1)
            footerItem.nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason);
        else
            inbox.person.moveSelection(1);
    }
    Keys.onUpPressed: inbox.person.moveSelection(-1)
    Keys.onReturnPressed: if (inbox.person.selectedId) entered()
    Keys.onEnterPressed: if (inbox.person.selectedId) entered()
    Keys.onMenuPressed: if (currentItem) menu.show(currentItem as ContactRow, currentItem)
    Keys.onSpacePressed: if (inbox.person.selectedId) inbox.actions.bulk.toggle(inbox.person.selectedId)

    section.property: "dateGroup"
    section.delegate: SectionHeader {
        required property string section
        width: ListView.view.width
        leftPadding: Theme.large
        topPadding: Theme.medium
        bottomPadding: Theme.tight
        text: section
    }

    delegate: ContactRow {
        id: line
        width: ListView.view.width
        picking: list.inbox.actions.bulk.active
        ringed: keyboard.shown && contact.selected
        onOpened: {
            list.forceActiveFocus(Qt.MouseFocusReason);
            list.inbox.person.select(line.contact.id);
        }
        onToggled: list.inbox.actions.bulk.toggle(line.contact.id)
        onAdded: list.inbox.actions.bulk.add(line.contact.id)
        onExtended: list.inbox.actions.bulk.extendTo(line.contact.id)
        onMenuAsked: menu.show(line, null)
    }

    ContactMenu {
        id: menu
        inbox: list.inbox
    }

    footer: Column {
        id: below
        readonly property SearchResults results: list.inbox.list.results

        width: list.width
        height: implicitHeight

        SectionHeader {
            visible: below.results.messagesShown
            leftPadding: Theme.large
            topPadding: Theme.large
            bottomPadding: Theme.tight
            text: below.results.messagesTitle
        }
        Skeleton {
            width: parent.width
            rows: 3
            active: below.results.searching
        }
        Repeater {
            model: below.results.messages
            HitRow {
                id: found
                width: list.width
                visible: found.index < below.results.messagesAtFirst
                onClicked: list.inbox.person.openHit(found.hit.id)
            }
        }
        PaneLink {
            x: 68 - Theme.small
            objectName: "inbox.moreHits"
            visible: text !== ""
            text: below.results.moreMessages
            onClicked: below.results.showAllMessages()
        }
        Repeater {
            model: below.results.records
            RecordHitRow {
                id: other
                width: list.width
                onOpened: below.results.openRecord(other.record.id)
                onMoreAsked: below.results.showGroup(other.record.id)
            }
        }
        Label {
            objectName: "inbox.recordsNotice"
            x: Theme.large
            width: parent.width - Theme.large * 2
            topPadding: Theme.large
            visible: text !== ""
            wrapMode: Text.Wrap
            text: below.results.recordsNotice
            color: Theme.bad
        }
    }
}
