import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// A deal: whose it is, what it is worth, and how long ago anybody wrote.
T.AbstractButton {
    id: card

    required property int index
    required property workDeal deal
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
    text: deal.name
    Accessible.role: Accessible.ListItem
    Accessible.name: deal.aloud

    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.surface
        border.width: card.ringed ? 2 : 1
        border.color: card.ringed ? Theme.accent : card.hovered ? Theme.faint : Theme.line
    }
    contentItem: Column {
        id: content
        spacing: Theme.tight
        Label {
            width: parent.width
            text: card.deal.name
            wrapMode: Text.Wrap
            maximumLineCount: 2
            font.weight: Theme.strong
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: card.deal.person
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: card.deal.value
        }
        Label {
            width: parent.width
            text: card.deal.touched
            font.pixelSize: Theme.meta
            color: card.deal.cold ? Theme.warn : Theme.faint
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
