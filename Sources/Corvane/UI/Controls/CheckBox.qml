import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A check box without a state of its own: pressing it emits `toggled`, and its owner sets `checked`.
T.AbstractButton {
    id: control

    property string name
    property string hint

    implicitWidth: 28
    implicitHeight: 28
    checkable: false
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.checkable: true
    Accessible.checked: checked
    hoverEnabled: true
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: toggled()

    Tooltip { text: control.hint; shown: control.hovered && control.hint !== "" }

    contentItem: Item {
        Rectangle {
            anchors.centerIn: parent
            width: 20
            height: 20
            radius: Theme.controlRadius
            color: control.checked ? Theme.accent : Theme.surface
            border.width: control.checked ? 0 : 1
            border.color: control.hovered ? Theme.accent : Theme.faint
            FocusRing { control: control }
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
