import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// An item on a board.
T.AbstractButton {
    id: card

    required property int index
    required property workItem item
    property bool current
    property bool ringed ///< the keyboard is here
    property bool carried ///< it is being dragged

    signal lifted(place: point)
    signal moved(place: point)
    signal releasedAt

    implicitHeight: content.implicitHeight + Theme.medium * 2
    padding: Theme.medium
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    opacity: carried ? 0.4 : 1
    text: item.title
    Accessible.role: Accessible.ListItem
    Accessible.name: item.aloud
    Accessible.selected: current

    background: Rectangle {
        radius: Theme.controlRadius
        color: card.current ? Theme.tint : Theme.surface
        border.width: card.ringed ? 2 : 1
        border.color: card.ringed ? Theme.accent : card.hovered ? Theme.faint : Theme.line
    }
    contentItem: Column {
        id: content
        spacing: Theme.tight
        Label {
            width: parent.width
            text: card.item.title
            wrapMode: Text.Wrap
            maximumLineCount: 3
            font.weight: Theme.strong
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: card.item.summary
            wrapMode: Text.Wrap
            maximumLineCount: 2
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Item {
            width: parent.width
            height: facts.implicitHeight
            Label {
                id: facts
                width: parent.width - time.implicitWidth - Theme.small
                text: card.item.owner ? card.item.kind + " · " + card.item.owner : card.item.kind
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
            Label {
                id: time
                anchors.right: parent.right
                text: card.item.updatedAt
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
        }
        Row {
            spacing: Theme.small
            visible: card.item.priority !== "" || card.item.waits
            Label {
                visible: text !== ""
                text: card.item.priority
                font.pixelSize: Theme.meta
                font.weight: Theme.strong
                color: card.item.priority === "High" ? Theme.bad : Theme.soft
            }
            Label {
                visible: card.item.waits
                text: qsTr("Waits for your decision")
                font.pixelSize: Theme.meta
                color: Theme.warn
            }
        }
    }

    DragHandler {
        target: null
        dragThreshold: 6
        grabPermissions: PointerHandler.CanTakeOverFromAnything
        onActiveChanged: {
            if (active)
                card.lifted(centroid.scenePosition);
            else
                card.releasedAt();
        }
        onCentroidChanged: if (active) card.moved(centroid.scenePosition)
    }
}
