import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A button that shows only an icon. `text` is its name, read aloud and shown as the tooltip, followed by the
/// key that does the same.
T.ToolButton {
    id: control

    property string key
    property int size: Theme.control
    property int iconSize: 18
    property color ink: checked ? Theme.accent : Theme.soft

    implicitWidth: size
    implicitHeight: size
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: key
    Accessible.checkable: checkable
    Accessible.checked: checked
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: control.icon.name
            size: control.iconSize
            color: control.ink
            opacity: control.enabled ? 1 : 0.5
        }
    }

    background: Rectangle {
        radius: Theme.controlRadius
        color: control.checked ? Theme.tint : control.hovered && control.enabled ? Theme.raised : Theme.none
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: Theme.text
            opacity: control.down ? 0.08 : 0
        }
        FocusRing { control: control }
    }

    Tooltip { text: control.key ? control.text + "   " + control.key : control.text; shown: control.hovered && control.enabled && !control.down }
}
