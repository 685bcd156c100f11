import QtQuick
import QtQuick.Templates as T
import Corvane.Calendar
import Corvane.Controls

/// An event in the grid.
T.AbstractButton {
    id: tile

    required property eventBlock event
    required property bool selected

    // The title has priority: in a narrow tile the button is below it, and in a narrow and short one it is hidden.
    readonly property bool wide: width >= 170
    readonly property bool legible: width >= 36 // a text too small to read is not laid out
    readonly property bool joins: event.joinable && (wide || height >= 44)

    signal joined

    hoverEnabled: true
    focusPolicy: Qt.NoFocus // the grid handles the arrow keys
    objectName: "calendar.event"
    text: event.title
    opacity: event.past && !selected ? 0.6 : 1
    Accessible.role: Accessible.ListItem
    Accessible.name: event.spoken
    Accessible.selected: selected

    background: Rectangle {
        radius: Theme.controlRadius
        color: tile.selected ? Theme.tint : tile.hovered ? Theme.line : Theme.raised
        border.width: tile.selected ? 2 : 1
        border.color: tile.selected ? Theme.accent : Theme.line
        Rectangle {
            x: 3
            y: 3
            width: 3
            height: parent.height - 6
            radius: 2
            color: tile.event.colour !== "" ? tile.event.colour : Theme.accent
        }
    }
    contentItem: Item {
        clip: true
        Label {
            id: title
            x: Theme.medium
            y: tile.height < 30 ? Math.round((tile.height - height) / 2) : Theme.tight
            width: parent.width - x - Theme.tight - (tile.joins && tile.wide ? join.width : 0)
            text: tile.legible ? tile.event.title : ""
            font.pixelSize: Theme.meta + 1
            font.weight: Theme.strong
            font.strikeout: tile.event.declined
        }
        Label {
            anchors.top: title.bottom
            x: Theme.medium
            width: parent.width - x - Theme.tight - (tile.joins && !tile.wide ? join.width : 0)
            text: tile.height >= 40 && tile.legible ? tile.event.timeText : ""
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
        Loader {
            id: join
            x: parent.width - width - 2
            y: tile.wide ? 2 : title.y + title.height
            active: tile.joins
            sourceComponent: Button {
                objectName: "calendar.tileJoin"
                implicitHeight: Math.min(24, tile.height - 4 - (tile.wide ? 0 : join.y))
                kind: "primary"
                focusPolicy: Qt.NoFocus
                text: qsTr("Join")
                onClicked: tile.joined()
            }
        }
    }
}
