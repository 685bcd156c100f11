import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// An item on one line.
T.AbstractButton {
    id: line

    required property int index
    required property workItem item
    property bool ringed ///< the keyboard is here

    implicitHeight: 48
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: item.title
    Accessible.role: Accessible.ListItem
    Accessible.name: item.aloud

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.hovered ? Theme.raised : Theme.none
        border.width: line.ringed ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Label {
            id: title
            x: Theme.small
            y: 6
            width: condition.x - x - Theme.medium
            text: line.item.title
            font.weight: Theme.strong
        }
        Label {
            x: Theme.small
            y: 26
            width: condition.x - x - Theme.medium
            text: line.item.owner ? line.item.kind + " · " + line.item.owner + " · " + line.item.updatedAt
                : line.item.kind + " · " + line.item.updatedAt
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        Label {
            id: condition
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: line.item.waits ? qsTr("waits for your decision") : line.item.priority ? line.item.priority + " · " + line.item.status : line.item.status
            font.pixelSize: Theme.meta
            color: line.item.waits ? Theme.warn : Theme.soft
        }
    }
}
