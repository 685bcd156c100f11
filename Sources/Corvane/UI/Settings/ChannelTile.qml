import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Settings

/// A channel that can be connected.
T.AbstractButton {
    id: control

    required property string channel
    property string detail

    implicitHeight: 60
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: detail || text
    Keys.onReturnPressed: clicked()

    contentItem: Item {
        ChannelMark {
            id: mark
            x: Theme.large
            anchors.verticalCenter: parent.verticalCenter
            channel: control.channel
            size: 20
        }
        Column {
            anchors.left: mark.right
            anchors.leftMargin: Theme.medium
            anchors.right: plus.left
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2
            Label {
                width: parent.width
                text: control.text
            }
            Label {
                width: parent.width
                visible: text !== "" && text !== control.text
                text: control.detail
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
        }
        Icon {
            id: plus
            anchors.right: parent.right
            anchors.rightMargin: Theme.large
            anchors.verticalCenter: parent.verticalCenter
            name: "list-add"
            color: control.hovered ? Theme.accent : Theme.faint
        }
    }
    background: Rectangle {
        radius: Theme.cardRadius
        color: control.down || control.hovered ? Theme.raised : Theme.surface
        border.width: 1
        border.color: Theme.line
        FocusRing { control: control }
    }
}
