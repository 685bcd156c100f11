import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Settings

/// A workspace to choose; the one in use carries a tick.
T.AbstractButton {
    id: row

    required property workspaceChoice line

    signal chosen(string id)

    objectName: "web.workspace." + line.id
    implicitHeight: 36
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    text: line.name
    Accessible.role: Accessible.RadioButton
    Accessible.name: line.name
    Accessible.checkable: true
    Accessible.checked: line.selected
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: chosen(line.id)

    background: Rectangle {
        radius: Theme.controlRadius
        color: row.hovered ? Theme.raised : Theme.none
        FocusRing { control: row }
    }
    contentItem: Item {
        Icon {
            id: tick
            anchors.verticalCenter: parent.verticalCenter
            visible: row.line.selected
            name: "dialog-ok"
            size: 16
            color: Theme.accent
        }
        Label {
            anchors.left: tick.right
            anchors.leftMargin: Theme.small
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: row.text
            font.weight: row.line.selected ? Theme.strong : Theme.regular
        }
    }
}
