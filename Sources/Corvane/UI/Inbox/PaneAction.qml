import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// An action as a line of its own, with its key at the right.
Button {
    id: action

    property string key

    width: parent.width
    kind: "quiet"
    leftPadding: 0
    rightPadding: 0

    contentItem: Item {
        Icon {
            id: sign
            anchors.verticalCenter: parent.verticalCenter
            name: action.icon.name
            color: action.ink
        }
        Label {
            anchors.left: sign.right
            anchors.leftMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            text: action.text
            color: action.ink
        }
        Keycaps {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: action.key !== ""
            keys: action.key
        }
    }
    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: -Theme.small
        anchors.rightMargin: -Theme.small
        radius: Theme.controlRadius
        color: action.hovered ? Theme.raised : Theme.none
        FocusRing { control: action; anchors.margins: -2; radius: Theme.controlRadius + 2 }
    }
}
