import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// The messages, oldest first. It opens at the newest and stays there while it is in sight.
ListView {
    id: list

    required property OpenPerson person
    readonly property ThreadView thread: person.thread

    property bool atNewest: true
    readonly property ThreadItem current: currentItem as ThreadItem ///< the focused item
    property Item headerButton: null

    objectName: "thread.list"
    clip: true
    model: thread.rows
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false
    highlightFollowsCurrentItem: false // a click within the list takes the focus, not the screen reader
    cacheBuffer: 240
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Messages")
    T.ScrollBar.vertical: ScrollBar {}
    KeyboardFocus { id: keyboard; target: list }

    // While the newest message is visible it stays visible, whatever grows above or below it.
    onMovementEnded: atNewest = atYEnd && !thread.hasNewer
    onContentYChanged: Qt.callLater(look)
    onContentHeightChanged: settle()
    onHeightChanged: settle()
    onCountChanged: {
        if (currentIndex >= count)
            currentIndex = count - 1;
        settle();
    }

    function settle() {
        if (atNewest)
            Qt.callLater(positionViewAtEnd);
        Qt.callLater(look);
    }

    function showNewest() {
        thread.showNewest();
        atNewest = true;
        positionViewAtEnd();
    }

    function showOldest() {
        atNewest = false;
        thread.showOldest();
        currentIndex = 0;
        positionViewAtBeginning();
    }

    /// Loads the next page when so many rows are left.
    readonly property int ahead: 40

    function look() {
        const last = thread.hasNewer ? null : itemAtIndex(count - 1);
        thread.reading.setNewestInSight(last !== null && last.y < contentY + height && last.y + last.height > contentY);
        if (atNewest)
            return;
        const middle = Math.max(0, indexAt(width / 2, contentY + height / 2));
        if (middle < ahead)
            thread.extendOlder();
        if (middle >= count - ahead)
            thread.extendNewer();
    }

    // If rows are added or removed above the visible ones, those stay in place. A page is inserted in parts, so the
    // anchor is kept until the user scrolls.
    property string anchorId ///< empty if nothing is held
    property real anchorY
    property bool holding: false

    function holdPlace() {
        if (atNewest || holding)
            return;
        const held = anchorId ? itemAtIndex(thread.rowOf(anchorId)) : null;
        if (!held || Math.abs(held.y - contentY - anchorY) > 1) {
            const steady = messageFrom(height / 2, Theme.wide) ?? messageFrom(0, Theme.wide);
            anchorId = steady?.message.id ?? "";
            anchorY = steady ? steady.y - contentY : 0;
        }
        holding = anchorId !== "";
        if (holding)
            Qt.callLater(takePlace);
    }

    /// The first visible message from `y` on, by steps that may lead upwards.
    function messageFrom(y: real, step: real): ThreadItem {
        for (; y >= 0 && y < height; y += step) {
            const item = itemAt(Theme.wide, contentY + y) as ThreadItem;
            if (item && !item.message.isDate)
                return item;
        }
        return null;
    }

    function lastInSight(): int {
        const last = atNewest ? null : messageFrom(height - 1, -Theme.wide);
        return last ? thread.rowOf(last.message.id) : count - 1;
    }

    function takePlace() {
        holding = false;
        const row = atNewest ? -1 : thread.rowOf(anchorId);
        if (row < 0)
            return;
        const held = itemAtIndex(row);
        if (held && Math.abs(held.y - contentY - anchorY) <= 1)
            return; // moving the view would stop a flick
        positionViewAtIndex(row, ListView.Beginning);
        contentY = itemAtIndex(row).y - anchorY;
    }

    function step(by: int) {
        thread.reading.touch();
        if (by < 0 && currentIndex >= 0 && currentIndex <= 1 && headerButton.visible) {
            headerButton.forceActiveFocus(Qt.BacktabFocusReason);
            return;
        }
        const inSight = currentItem && currentItem.y + currentItem.height > contentY && currentItem.y < contentY + height;
        let next = inSight ? currentIndex + by : lastInSight();
        atNewest = false;
        while ((itemAtIndex(next) as ThreadItem)?.message.isDate)
            next += by;
        currentIndex = Math.max(0, Math.min(count - 1, next));
        positionViewAtIndex(currentIndex, ListView.Contain);
        atNewest = currentIndex === count - 1 && !thread.hasNewer;
    }

    /// From the newest message on: to what follows the list.
    function leave(forward: bool): bool {
        if (currentIndex !== count - 1)
            return false;
        let next = list;
        do {
            next = next.nextItemInFocusChain(forward);
        } while (isWithin(next) && next !== list);
        next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
        return true;
    }

    function isWithin(item: Item): bool {
        for (; item; item = item.parent) {
            if (item === list)
                return true;
        }
        return false;
    }

    function page(by: int) {
        atNewest = false;
        const end = originY + contentHeight - height;
        contentY = Math.max(originY, Math.min(end, contentY + by * (height - Theme.huge)));
        atNewest = contentY >= end - 1 && !thread.hasNewer;
        settle(); // new delegates may not have the estimated height
    }

    function jump() {
        atNewest = false;
        Qt.callLater(centre, person.jumpMsgId);
    }

    function centre(messageId: string) {
        const row = thread.rowOf(messageId);
        if (row < 0)
            return;
        currentIndex = row;
        positionViewAtIndex(row, ListView.Center);
        look();
    }

    Component.onCompleted: currentIndex = -1
    onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = lastInSight()
    Connections {
        target: list.thread
        function onOpened() {
            list.atNewest = true;
            list.currentIndex = -1;
            list.positionViewAtEnd();
        }
    }
    Connections {
        target: list.person
        function onJumped() { list.jump(); }
    }
    Connections {
        target: list.model
        function onRowsAboutToBeInserted() { list.holdPlace(); }
        function onRowsAboutToBeRemoved() { list.holdPlace(); }
    }

    Keys.onDownPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onTabPressed: event => event.accepted = leave(true)
    Keys.onReturnPressed: current?.openMenu()
    Keys.onPressed: event => {
        thread.reading.touch();
        if (event.matches(StandardKey.Copy) && current) {
            WindowTools.copy(person.messageActions.readableText(current.message.id));
            event.accepted = true;
        } else if (event.key === Qt.Key_Menu) {
            current?.openMenu();
            event.accepted = true;
        } else if (event.key === Qt.Key_Space && current?.message.mediaKind === "audio" && current.message.mediaState === "ready") {
            person.voicePlayer.toggle(current.message.id);
            event.accepted = true;
        } else if ((event.key === Qt.Key_Left || event.key === Qt.Key_Right) && current?.message.id === person.voicePlayer.messageId) {
            person.voicePlayer.skip(event.key === Qt.Key_Left ? -5 : 5);
            event.accepted = true;
        } else if (event.key === Qt.Key_Delete && current && !current.message.isDate) {
            person.messageActions.deleteLocal(current.message.id);
            event.accepted = true;
        } else if (event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown) {
            page(event.key === Qt.Key_PageUp ? -1 : 1);
            event.accepted = true;
        } else if (event.key === Qt.Key_End) {
            showNewest();
            currentIndex = count - 1;
            event.accepted = true;
        } else if (event.key === Qt.Key_Home) {
            showOldest();
            event.accepted = true;
        }
    }

    header: Item {
        width: list.width
        height: Theme.medium + (older.visible ? older.height : 0)
        Button {
            id: older
            objectName: "thread.loadOlder"
            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.small
            visible: list.thread.history.canLoadOlder
            implicitHeight: 28
            kind: "quiet"
            text: list.thread.history.loadOlderText
            enabled: !list.thread.history.loadingMore
            Component.onCompleted: list.headerButton = older
            activeFocusOnTab: false // Up reaches it from the first message
            Keys.onDownPressed: {
                focus = false;
                list.forceActiveFocus(Qt.TabFocusReason);
            }
            onVisualFocusChanged: if (visualFocus) {
                list.atNewest = false;
                list.positionViewAtBeginning();
            }
            onClicked: list.thread.history.loadMore()
        }
    }
    footer: Item { width: 1; height: Theme.large }
    delegate: ThreadItem {
        width: ListView.view.width
        person: list.person
        ringed: keyboard.shown && ListView.isCurrentItem
    }

    IconButton {
        id: newest
        parent: list
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Theme.large
        visible: list.thread.hasNewer || (!list.atYEnd && !list.atNewest)
        icon.name: "go-down"
        text: qsTr("To the newest message")
        key: "End"
        background: Rectangle {
            radius: width / 2
            color: Theme.surface
            border.width: 1
            border.color: Theme.line
            FocusRing { control: newest }
        }
        onClicked: list.showNewest()
    }
}
