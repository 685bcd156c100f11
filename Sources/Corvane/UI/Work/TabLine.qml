import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// An agent's terminal; the chosen one takes the next order.
T.AbstractButton {
    id: line

    required property opsTab tab
    property bool chosen

    implicitHeight: 48
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    text: tab.name
    Accessible.role: Accessible.RadioButton
    Accessible.name: tab.name + ", " + tab.state + ", " + tab.detail
    Accessible.checkable: true
    Accessible.checked: chosen
    Keys.onReturnPressed: clicked()

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.chosen ? Theme.tint : line.hovered ? Theme.raised : Theme.surface
        border.width: 1
        border.color: line.chosen ? Theme.accent : Theme.line
        FocusRing { control: line }
    }
    contentItem: Item {
        Rectangle {
            id: dot
            x: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            width: 8
            height: 8
            radius: 4
            color: line.tab.live ? Theme.good : Theme.faint
        }
        Label {
            id: name
            anchors.left: dot.right
            anchors.leftMargin: Theme.medium
            y: 7
            width: parent.width - x - condition.implicitWidth - Theme.large
            text: line.tab.name
            font.weight: Theme.strong
        }
        Label {
            anchors.left: name.left
            y: 26
            width: parent.width - x - Theme.medium
            text: line.tab.detail
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Label {
            id: condition
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.baseline: name.baseline
            text: line.tab.state
            font.pixelSize: Theme.meta
            color: line.tab.live ? Theme.good : Theme.faint
        }
    }
}
