import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A button with a text. `kind` is "primary" for the main action, "plain", "quiet" (no background until hovered)
/// or "danger".
T.Button {
    id: control

    property string kind: "plain"
    property string hint

    readonly property color ground: kind === "quiet" ? Theme.none : !enabled ? Theme.raised
        : kind === "primary" ? Theme.accent : Theme.surface
    readonly property color ink: !enabled ? Theme.faint
        : kind === "primary" ? Theme.accentInk
        : kind === "danger" ? Theme.bad
        : Theme.text

    implicitWidth: Math.max(implicitContentWidth + leftPadding + rightPadding, Theme.control)
    implicitHeight: Theme.control
    leftPadding: Theme.medium
    rightPadding: Theme.medium
    spacing: Theme.small
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: hint
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        implicitWidth: line.implicitWidth
        implicitHeight: line.implicitHeight
        Row {
            id: line
            anchors.centerIn: parent
            spacing: control.spacing
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.icon.name !== ""
                name: control.icon.name
                color: control.ink
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                visible: text !== ""
                text: control.text
                color: control.ink
                font.weight: control.kind === "primary" ? Theme.strong : Theme.regular
            }
        }
    }

    background: Rectangle {
        radius: Theme.controlRadius
        color: control.ground
        border.width: control.kind === "quiet" || (control.kind === "primary" && control.enabled) ? 0 : 1
        border.color: Theme.line

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.kind === "primary" ? Theme.accentInk : Theme.text
            opacity: !control.enabled ? 0 : control.down ? 0.12 : control.hovered ? 0.06 : 0
            Behavior on opacity { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
        }
        FocusRing { control: control }
    }

    Tooltip { text: control.hint; shown: control.hovered && control.hint !== "" }
}
