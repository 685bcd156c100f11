import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Somebody who waits: since when, their last words, and what is open with them.
T.AbstractButton {
    id: line

    required property waitingPerson person
    property bool current
    property bool ringed ///< the keyboard is here

    implicitHeight: Theme.row
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: person.name
    Accessible.role: Accessible.ListItem
    Accessible.name: person.aloud
    Accessible.selected: current

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.current ? Theme.tint : line.hovered ? Theme.raised : Theme.none
        border.width: line.ringed ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Avatar {
            id: face
            x: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            width: 36
            hue: line.person.hue
            initials: line.person.initials
        }
        Label {
            id: name
            anchors.left: face.right
            anchors.leftMargin: Theme.medium
            y: 12
            width: waits.x - x - Theme.small
            text: line.person.name
            font.weight: Theme.strong
        }
        Label {
            id: waits
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.baseline: name.baseline
            text: line.person.waits
            font.pixelSize: Theme.meta
            color: line.person.late ? Theme.warn : Theme.faint
        }
        Label {
            anchors.left: name.left
            y: 34
            width: work.x - x - Theme.small
            text: line.person.snippet
            color: Theme.soft
        }
        Label {
            id: work
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            y: 35
            text: line.person.work
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
    }
}
