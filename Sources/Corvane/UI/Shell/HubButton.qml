import QtQuick
import QtQuick.Templates as T
import Corvane

/// One hub: its word, what waits in it, and the underline of the chosen one.
T.AbstractButton {
    id: control

    required property string raw
    required property string label
    required property string badge
    required property bool selected
    required property string identifier
    required property string shortcut

    objectName: identifier
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    text: label
    Accessible.role: Accessible.PageTab
    Accessible.name: badge ? qsTr("%1, %2 unread").arg(label).arg(badge) : label
    Accessible.selected: selected
    Keys.onReturnPressed: clicked()
    Keys.onRightPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    contentItem: Row {
        spacing: 6
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: control.label
            font.weight: control.selected ? Theme.strong : Theme.regular
            color: control.selected || control.hovered ? Theme.text : Theme.soft
        }
        Badge {
            anchors.verticalCenter: parent.verticalCenter
            text: control.badge
        }
    }
    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: 10
            anchors.bottomMargin: 10
            radius: Theme.controlRadius
            color: control.hovered && !control.selected ? Theme.raised : Theme.none
            FocusRing { control: control; anchors.margins: -2 }
        }
        Rectangle {
            visible: control.selected
            anchors.bottom: parent.bottom
            x: Theme.medium
            width: parent.width - Theme.medium * 2
            height: 2
            radius: 1
            color: Theme.accent
        }
    }
    Tooltip { text: control.label + "   " + control.shortcut; shown: control.hovered }
}
