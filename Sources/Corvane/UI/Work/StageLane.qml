import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// A stage of the pipeline.
FocusScope {
    id: view

    required property PipelineStage stage
    property string dragged ///< the deal that is carried

    signal moved(id: string, by: int)
    signal dropped(id: string)
    signal opened(contact: string)
    signal lifted(deal: workDeal, place: point)
    signal carried(place: point)
    signal released

    Accessible.role: Accessible.Pane
    Accessible.name: stage.title + ", " + stage.count + ", " + stage.sum

    Rectangle {
        anchors.fill: parent
        anchors.bottomMargin: Theme.medium
        radius: Theme.cardRadius
        color: drop.containsDrag ? Theme.tint : Theme.raised
        border.width: drop.containsDrag ? 1 : 0
        border.color: Theme.accent
    }
    Label {
        id: title
        x: Theme.medium
        y: 10
        width: count.x - x - Theme.small
        text: view.stage.title
        font.weight: Theme.strong
        Accessible.ignored: true
    }
    Label {
        id: count
        anchors.right: parent.right
        anchors.rightMargin: Theme.medium
        anchors.baseline: title.baseline
        text: view.stage.count
        font.pixelSize: Theme.meta
        color: Theme.soft
        Accessible.ignored: true
    }
    Label {
        id: sum
        x: Theme.medium
        y: 30
        width: parent.width - Theme.medium * 2
        text: view.stage.sum
        font.pixelSize: Theme.meta
        color: Theme.soft
        Accessible.ignored: true
    }
    ListView {
        id: list
        anchors.top: sum.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.large
        x: Theme.small
        width: parent.width - Theme.small * 2
        focus: true
        clip: true
        spacing: Theme.small
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.stage.deals
        Accessible.role: Accessible.List
        Accessible.name: view.stage.title
        T.ScrollBar.vertical: ScrollBar {}

        KeyboardFocus { id: keyboard; target: list }

        function act(event: var) {
            const card = currentItem as DealCard;
            if (!card)
                return;
            event.accepted = true;
            if (event.modifiers & Qt.AltModifier && (event.key === Qt.Key_Right || event.key === Qt.Key_Left))
                view.moved(card.deal.id, event.key === Qt.Key_Right ? 1 : -1);
            else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                view.opened(card.deal.contactId);
            else
                event.accepted = false;
        }
        Keys.onPressed: event => act(event)

        delegate: DealCard {
            id: card
            objectName: "pipeline.deal:" + deal.name
            width: ListView.view.width
            ringed: ListView.isCurrentItem && keyboard.shown
            carried: view.dragged === deal.id
            onClicked: {
                list.currentIndex = index;
                list.forceActiveFocus(Qt.MouseFocusReason);
                view.opened(deal.contactId);
            }
            onLifted: place => view.lifted(card.deal, place)
            onMoved: place => view.carried(place)
            onReleasedAt: view.released()
        }
    }
    DropArea {
        id: drop
        anchors.fill: parent
        keys: ["corvane.work.deal"]
        onDropped: view.dropped(view.dragged)
    }
}
