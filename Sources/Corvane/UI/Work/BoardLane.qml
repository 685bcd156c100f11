import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// A lane: its name, its count and its cards.
FocusScope {
    id: view

    required property WorkLane lane
    property string current ///< the item that is open
    property string dragged ///< the item that is carried

    signal opened(id: string)
    signal moved(id: string, by: int)
    signal dropped(id: string)
    signal lifted(item: workItem, place: point)
    signal carried(place: point)
    signal released
    signal moreAsked

    Accessible.role: Accessible.Pane
    Accessible.name: lane.title + ", " + lane.countText

    Rectangle {
        anchors.fill: parent
        anchors.bottomMargin: Theme.medium
        radius: Theme.cardRadius
        color: drop.containsDrag ? Theme.tint : Theme.raised
        border.width: drop.containsDrag ? 1 : 0
        border.color: Theme.accent
        Behavior on color { ColorAnimation { duration: Theme.quick } }
    }
    T.AbstractButton {
        id: head
        width: parent.width
        height: 36
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        text: view.lane.title
        Accessible.name: view.lane.title + ", " + view.lane.countText
        Accessible.description: view.lane.folded ? qsTr("Folded") : ""
        onClicked: view.lane.folded = !view.lane.folded
        Keys.onReturnPressed: clicked()
        background: Item {
            Rectangle {
                anchors.fill: parent
                radius: Theme.cardRadius
                color: Theme.none
                FocusRing { control: head; anchors.margins: -2 }
            }
        }
        contentItem: Item {
            Label {
                x: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                visible: !view.lane.folded
                text: view.lane.title
                font.weight: Theme.strong
                Accessible.ignored: true
            }
            Label {
                anchors.right: parent.right
                anchors.rightMargin: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                text: view.lane.countText
                font.pixelSize: Theme.meta
                color: Theme.soft
                Accessible.ignored: true
            }
        }
    }
    Label {
        anchors.top: head.bottom
        anchors.topMargin: width
        anchors.horizontalCenter: parent.horizontalCenter
        visible: view.lane.folded
        rotation: 90
        text: view.lane.title
        color: Theme.soft
        Accessible.ignored: true
    }
    Rectangle {
        id: gap
        anchors.top: head.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        height: drop.containsDrag && !view.lane.folded ? 44 : 0
        visible: height > 0
        radius: Theme.controlRadius
        color: Theme.none
        border.width: 1
        border.color: Theme.accent
        Behavior on height { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
    }
    ListView {
        id: list
        anchors.top: gap.bottom
        anchors.topMargin: gap.visible ? Theme.small : 0
        anchors.bottom: more.top
        anchors.bottomMargin: Theme.medium
        x: Theme.small
        width: parent.width - Theme.small * 2
        visible: !view.lane.folded
        focus: true
        clip: true
        spacing: Theme.small
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.lane.items
        Accessible.role: Accessible.List
        Accessible.name: view.lane.title
        T.ScrollBar.vertical: ScrollBar {}

        KeyboardFocus { id: keyboard; target: list }

        function act(event: var) {
            const card = currentItem as BoardCard;
            if (!card)
                return;
            event.accepted = true;
            if (event.modifiers & Qt.AltModifier && (event.key === Qt.Key_Right || event.key === Qt.Key_Left))
                view.moved(card.item.id, event.key === Qt.Key_Right ? 1 : -1);
            else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                view.opened(card.item.id);
            else
                event.accepted = false;
        }
        Keys.onPressed: event => act(event)

        delegate: BoardCard {
            id: card
            objectName: "board.card:" + item.title
            width: ListView.view.width
            current: view.current === item.id
            ringed: ListView.isCurrentItem && keyboard.shown
            carried: view.dragged === item.id
            onClicked: {
                list.currentIndex = index;
                list.forceActiveFocus(Qt.MouseFocusReason);
                view.opened(card.item.id);
            }
            onLifted: place => view.lifted(card.item, place)
            onMoved: place => view.carried(place)
            onReleasedAt: view.released()
        }
    }
    Button {
        id: more
        anchors.bottom: parent.bottom
        anchors.bottomMargin: visible ? Theme.medium + Theme.tight : Theme.medium
        anchors.horizontalCenter: parent.horizontalCenter
        height: visible ? 28 : 0
        visible: view.lane.moreText !== "" && !view.lane.folded
        kind: "quiet"
        text: view.lane.moreText
        onClicked: view.moreAsked()
    }
    DropArea {
        id: drop
        anchors.fill: parent
        keys: ["corvane.work.item"]
        onDropped: view.dropped(view.dragged)
    }
}
