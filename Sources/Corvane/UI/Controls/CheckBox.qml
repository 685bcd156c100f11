import Corvane
import QtQuick
import QtQuick.Templates as T

/// A box that its owner ticks: pressing it only says so.
T.AbstractButton {
    id: control

    property string name

    implicitWidth: 28
    implicitHeight: 28
    checkable: false
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.checkable: true
    Accessible.checked: checked
    onClicked: toggled()

    contentItem: Item {
        Rectangle {
            anchors.centerIn: parent
            width: 20
            height: 20
            radius: Theme.controlRadius
            color: control.checked ? Theme.accent : Theme.surface
            border.width: control.checked ? 0 : 2
            border.color: Theme.faint
            Icon {
                anchors.centerIn: parent
                visible: control.checked
                name: "dialog-ok"
                size: 14
                color: Theme.accentInk
            }
        }
    }
}
