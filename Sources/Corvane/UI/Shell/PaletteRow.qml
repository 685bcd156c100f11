import QtQuick
import QtQuick.Templates as T
import Corvane

/// A person or an action of the palette.
T.AbstractButton {
    id: row

    required property int index
    required property string id
    required property bool isAction
    required property string label
    required property string detail
    required property string platform
    required property string avatarPath
    required property string initials
    required property int hue
    required property bool highlighted

    implicitHeight: 40
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: detail ? label + ", " + detail : label
    Accessible.selected: highlighted

    background: Rectangle {
        radius: Theme.controlRadius
        color: row.highlighted ? Theme.tint : row.hovered ? Theme.raised : Theme.none
    }
    contentItem: Item {
        Avatar {
            visible: !row.isAction
            x: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            width: 28
            hue: row.hue
            initials: row.initials
            photo: row.avatarPath
            group: row.initials === ""
        }
        Icon {
            visible: row.isAction
            x: Theme.small + 6
            anchors.verticalCenter: parent.verticalCenter
            name: !visible ? "" : row.id === "action:search" ? "edit-find" : "go-next"
            color: row.highlighted ? Theme.accent : Theme.faint
        }
        Label {
            x: 48
            width: more.x - x - Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: row.label
        }
        Label {
            id: more
            visible: !row.isAction
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            text: row.detail
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Keycaps {
            visible: row.isAction && row.detail !== ""
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            keys: row.isAction ? row.detail : ""
        }
    }
}
