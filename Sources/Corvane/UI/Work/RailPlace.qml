import QtQuick
import QtQuick.Templates as T
import Corvane.Controls

/// A place of a hub that is not a context.
T.AbstractButton {
    id: control

    property bool current
    property int count: 0

    implicitHeight: 32
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.PageTab
    Accessible.name: count > 0 ? text + ", " + count : text
    Accessible.selected: current
    Keys.onReturnPressed: clicked()
    Keys.onDownPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    background: Rectangle {
        radius: Theme.controlRadius
        color: control.current ? Theme.tint : control.hovered ? Theme.raised : Theme.none
        FocusRing { control: control; anchors.margins: -2 }
    }
    contentItem: Item {
        Label {
            x: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            font.weight: control.current ? Theme.strong : Theme.regular
            color: control.current ? Theme.accent : Theme.text
        }
        Badge {
            anchors.right: parent.right
            anchors.rightMargin: Theme.tight
            anchors.verticalCenter: parent.verticalCenter
            quiet: true
            text: control.count > 0 ? control.count : ""
        }
    }
}
