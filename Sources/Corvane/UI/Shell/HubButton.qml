import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Shell

/// One hub: its label, its badge, and the underline of the selected one.
T.AbstractButton {
    id: control

    required property hubRow hub

    objectName: hub.identifier
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    text: hub.label
    Accessible.role: Accessible.PageTab
    Accessible.name: hub.badgeAloud ? hub.label + ", " + hub.badgeAloud : hub.label
    Accessible.selected: hub.selected
    Keys.onReturnPressed: clicked()
    Keys.onRightPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    contentItem: Row {
        spacing: 6
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: control.hub.label
            font.weight: control.hub.selected ? Theme.strong : Theme.regular
            color: control.hub.selected || control.hovered ? Theme.text : Theme.soft
        }
        Badge {
            anchors.verticalCenter: parent.verticalCenter
            text: control.hub.badge
        }
    }
    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: 10
            anchors.bottomMargin: 10
            radius: Theme.controlRadius
            color: control.hovered && !control.hub.selected ? Theme.raised : Theme.none
            FocusRing { control: control; anchors.margins: -2 }
        }
        Rectangle {
            visible: control.hub.selected
            anchors.bottom: parent.bottom
            x: Theme.medium
            width: parent.width - Theme.medium * 2
            height: 2
            radius: 1
            color: Theme.accent
        }
    }
    Tooltip { text: control.hub.label + "   " + control.hub.shortcut; shown: control.hovered }
}
