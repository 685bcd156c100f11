import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// A context in the rail: what it is, what is open in it, and a dot where it waits for a person.
T.AbstractButton {
    id: line

    required property workContext context
    property bool current
    property bool ringed ///< the keyboard is here

    implicitHeight: context.subtitle ? 50 : 34
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: context.title
    Accessible.role: Accessible.ListItem
    Accessible.name: context.aloud
    Accessible.selected: current

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.current ? Theme.tint : line.hovered ? Theme.raised : Theme.none
        border.width: line.ringed ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Rectangle {
            id: dot
            x: Theme.small
            anchors.verticalCenter: title.verticalCenter
            width: 7
            height: 7
            radius: 4
            color: line.context.waits ? Theme.accent : line.context.live ? Theme.good : Theme.line
        }
        Label {
            id: title
            x: Theme.wide
            y: 8
            width: meta.x - x - Theme.small
            text: line.context.title
            font.weight: line.context.waits ? Theme.strong : Theme.regular
        }
        Label {
            id: meta
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.baseline: title.baseline
            text: line.context.meta
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        Label {
            x: Theme.wide
            y: 28
            width: parent.width - x - Theme.small
            visible: text !== ""
            text: line.context.subtitle
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
    }
}
