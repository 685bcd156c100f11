import QtQuick
import QtQuick.Templates as T
import Corvane

/// The messages, oldest first. It opens at the newest and stays there while it is in sight.
ListView {
    id: list

    required property QtObject thread
    required property QtObject inbox

    property bool atNewest: true

    objectName: "thread.list"
    clip: true
    model: thread.rows
    boundsBehavior: Flickable.StopAtBounds
    keyNavigationEnabled: false
    highlightMoveDuration: 0
    cacheBuffer: 800
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Messages")
    T.ScrollBar.vertical: ScrollBar {}
    KeyboardFocus { id: keyboard; target: list }

    // While the newest is in sight it stays there, whatever grows above or below it.
    onMovementEnded: atNewest = atYEnd
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
    }

    // Where rows come in above what is being read, that stays in its place.
    property var anchor: null

    function holdPlace() {
        if (atNewest || anchor)
            return;
        for (let y = 0; y < height && !anchor; y += Theme.wide) {
            const item = itemAt(Theme.wide, contentY + y);
            if (item && !item.isDate)
                anchor = { id: item.id, y: item.y - contentY };
        }
        if (anchor)
            Qt.callLater(takePlace);
    }

    function takePlace() {
        const row = atNewest ? -1 : thread.rowOf(anchor.id);
        if (row >= 0) {
            positionViewAtIndex(row, ListView.Beginning);
            contentY = itemAtIndex(row).y - anchor.y;
        }
        anchor = null;
    }

    function step(by: int) {
        atNewest = false;
        let next = currentIndex < 0 ? count - 1 : currentIndex + by;
        while (itemAtIndex(next)?.isDate)
            next += by;
        currentIndex = Math.max(0, Math.min(count - 1, next));
        positionViewAtIndex(currentIndex, ListView.Contain);
        atNewest = currentIndex === count - 1;
    }

    function jump() {
        const row = thread.rowOf(inbox.jumpMsgId);
        if (row < 0)
            return;
        atNewest = false;
        currentIndex = row;
        Qt.callLater(positionViewAtIndex, row, ListView.Center);
    }

    Component.onCompleted: currentIndex = -1
    onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = count - 1
    Connections {
        target: list.thread
        function onContactChanged() {
            list.atNewest = true;
            list.currentIndex = -1;
            list.settle();
        }
    }
    Connections {
        target: list.inbox
        function onJumped() { list.jump(); }
    }
    Connections {
        target: list.model
        function onRowsAboutToBeInserted() { list.holdPlace(); }
    }

    Keys.onDownPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onReturnPressed: currentItem?.openMenu?.()
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy) && currentItem?.id) {
            WindowTools.copy(thread.readableText(currentItem.id));
            event.accepted = true;
        } else if (event.key === Qt.Key_Menu) {
            currentItem?.openMenu?.();
            event.accepted = true;
        } else if (event.key === Qt.Key_Space && currentItem?.mediaKind === "audio" && currentItem.mediaState === "ready") {
            inbox.voicePlayer.toggle(currentItem.id);
            event.accepted = true;
        } else if ((event.key === Qt.Key_Left || event.key === Qt.Key_Right) && currentItem?.id === inbox.voicePlayer.messageId) {
            inbox.voicePlayer.skip(event.key === Qt.Key_Left ? -5 : 5);
            event.accepted = true;
        } else if (event.key === Qt.Key_Delete && currentItem && !currentItem.isDate) {
            inbox.messageActions.deleteLocal(currentItem.id);
            event.accepted = true;
        } else if (event.key === Qt.Key_End) {
            atNewest = true;
            currentIndex = count - 1;
            positionViewAtEnd();
            event.accepted = true;
        } else if (event.key === Qt.Key_Home) {
            atNewest = false;
            currentIndex = 0;
            positionViewAtBeginning();
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
            visible: list.thread.canLoadOlder
            implicitHeight: 28
            kind: "quiet"
            text: list.thread.loadOlderText
            enabled: !list.thread.loadingMore
            onActiveFocusChanged: if (activeFocus) {
                list.atNewest = false;
                list.positionViewAtBeginning();
            }
            onClicked: list.thread.loadOlder()
        }
    }
    footer: Item { width: 1; height: Theme.large }
    delegate: ThreadItem {
        width: ListView.view.width
        inbox: list.inbox
        ringed: keyboard.shown && ListView.isCurrentItem
    }

    IconButton {
        id: newest
        parent: list
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Theme.large
        visible: !list.atYEnd && !list.atNewest
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
        onClicked: {
            list.atNewest = true;
            list.positionViewAtEnd();
        }
    }
}
