import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A tab for one view of a list, with its count.
T.AbstractButton {
    id: control

    property bool selected: false
    property int count: 0

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: Theme.small
    rightPadding: Theme.small
    implicitHeight: 28
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.PageTab
    Accessible.name: count ? text + ", " + count : text
    Accessible.selected: selected
    Keys.onReturnPressed: clicked()

    contentItem: Row {
        spacing: 5
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            font.weight: control.selected ? Theme.strong : Theme.regular
            color: control.selected ? Theme.accent : control.hovered ? Theme.text : Theme.soft
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.count > 0
            text: control.count > 999 ? "999+" : control.count
            font.pixelSize: Theme.meta
            color: control.selected ? Theme.accent : Theme.faint
        }
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: control.selected ? Theme.tint : control.hovered ? Theme.raised : Theme.none
        FocusRing { control: control; anchors.margins: -2; radius: Theme.controlRadius + 2 }
    }
}
