import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls

/// A call in the list.
T.AbstractButton {
    id: line

    required property callRow call
    property bool current
    property bool ringed ///< the keyboard is here

    readonly property color toneInk: call.tone === "recording" || call.tone === "bad" ? Theme.bad
        : call.tone === "warn" ? Theme.warn : call.tone === "busy" ? Theme.accent : Theme.faint

    implicitHeight: 56
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: call.title
    Accessible.role: Accessible.ListItem
    Accessible.name: call.aloud
    Accessible.selected: current

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.current ? Theme.tint : line.hovered ? Theme.raised : Theme.none
        border.width: line.ringed ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Label {
            id: title
            x: Theme.medium
            y: 9
            width: time.x - x - Theme.small
            text: line.call.title
            font.weight: Theme.strong
        }
        Label {
            id: time
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.baseline: title.baseline
            text: line.call.time
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        Label {
            x: Theme.medium
            y: 30
            width: parent.width - Theme.medium * 2
            text: line.call.detail
            font.pixelSize: Theme.meta
            color: line.toneInk
        }
    }
}
