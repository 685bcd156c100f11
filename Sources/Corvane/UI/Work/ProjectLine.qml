import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// A project in the list: its live dots, what waits, and what was reported last.
T.AbstractButton {
    id: line

    required property opsProject project
    property bool current
    property bool ringed ///< the keyboard is here

    implicitHeight: 72
    hoverEnabled: true
    focusPolicy: Qt.NoFocus
    text: project.name
    Accessible.role: Accessible.ListItem
    Accessible.name: project.aloud
    Accessible.selected: current

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.current ? Theme.tint : line.hovered ? Theme.raised : Theme.none
        border.width: line.ringed ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Label {
            id: name
            x: Theme.medium
            y: 10
            width: dots.x - x - Theme.small
            text: line.project.name
            font.weight: Theme.strong
        }
        Row {
            id: dots
            anchors.right: parent.right
            anchors.rightMargin: Theme.medium
            anchors.verticalCenter: name.verticalCenter
            spacing: 3
            Repeater {
                model: Math.min(line.project.liveTabs + line.project.downTabs, 8)
                Rectangle {
                    required property int index
                    width: 7
                    height: 7
                    radius: 4
                    color: index < line.project.liveTabs ? Theme.good : Theme.line
                }
            }
            Badge {
                anchors.verticalCenter: parent.verticalCenter
                text: line.project.openAsks > 0 ? line.project.openAsks : ""
            }
        }
        Label {
            x: Theme.medium
            y: 31
            width: parent.width - Theme.medium * 2
            text: line.project.facts
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        Label {
            x: Theme.medium
            y: 48
            width: parent.width - Theme.medium * 2
            text: line.project.latest
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
    }
}
