import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A switch, with its label on the left.
T.Switch {
    id: control

    implicitWidth: implicitContentWidth + 36 + spacing
    implicitHeight: Theme.control
    spacing: Theme.medium
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked

    contentItem: Label {
        rightPadding: 36 + control.spacing
        verticalAlignment: Text.AlignVCenter
        text: control.text
    }
    indicator: Rectangle {
        x: control.width - width
        anchors.verticalCenter: parent ? parent.verticalCenter : undefined
        width: 36
        height: 20
        radius: 10
        color: control.checked ? Theme.accent : Theme.raised
        border.width: control.checked ? 0 : 1
        border.color: Theme.faint
        Rectangle {
            x: control.checked ? 18 : 2
            y: 2
            width: 16
            height: 16
            radius: 8
            color: control.checked ? Theme.accentInk : Theme.faint
            Behavior on x { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
        }
        FocusRing { control: control }
    }
}
