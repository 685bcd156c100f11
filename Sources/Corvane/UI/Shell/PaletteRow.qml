import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox
import Corvane.Shell

/// A person or an action of the palette.
T.AbstractButton {
    id: row

    required property int index
    required property paletteItem entry
    readonly property bool found: entry.icon !== "" ///< neither a person nor an action

    implicitHeight: 40
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.ListItem
    Accessible.name: entry.detail ? entry.label + ", " + entry.detail : entry.label
    Accessible.selected: entry.highlighted

    background: Rectangle {
        radius: Theme.controlRadius
        color: row.entry.highlighted ? Theme.tint : row.hovered ? Theme.raised : Theme.none
    }
    contentItem: Item {
        Avatar {
            visible: !row.entry.isAction && !row.found
            x: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            width: 28
            hue: row.entry.hue
            initials: row.entry.initials
            photo: row.entry.avatarPath
            group: row.entry.initials === ""
        }
        Icon {
            visible: row.entry.isAction || row.found
            x: Theme.small + 6
            anchors.verticalCenter: parent.verticalCenter
            name: row.found ? row.entry.icon : row.entry.isAction ? (row.entry.id === "action:searchMessages" ? "edit-find" : "go-next") : ""
            color: row.entry.highlighted ? Theme.accent : Theme.faint
        }
        Label {
            x: 48
            width: more.x - x - Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: row.entry.label
        }
        Label {
            id: more
            visible: !row.entry.isAction
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            text: row.entry.detail
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Keycaps {
            visible: row.entry.isAction && row.entry.detail !== ""
            anchors.right: parent.right
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            keys: row.entry.isAction ? row.entry.detail : ""
        }
    }
}
