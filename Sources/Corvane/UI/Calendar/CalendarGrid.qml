import QtQuick
import QtQuick.Templates as T
import Corvane.Calendar
import Corvane.Controls

/// A column for each day, with the hours that have events. The keyboard moves through the events.
FocusScope {
    id: grid

    required property CalendarView screen
    readonly property CalendarTiles tiles: screen.tiles
    readonly property int gutter: 52
    readonly property int hours: tiles.lastHour - tiles.firstHour
    readonly property int columns: Math.max(1, tiles.days.length)
    readonly property real columnWidth: (width - gutter - Theme.medium) / columns
    readonly property real hourHeight: Math.max(44, (view.height - Theme.large) / Math.max(1, hours))

    property dayHead noDay
    property freeGap noGap

    signal newPressed

    Accessible.role: Accessible.List
    Accessible.name: screen.title

    Keys.onPressed: event => {
        event.accepted = true;
        switch (event.key) {
        case Qt.Key_Left:
            grid.screen.step(-1);
            break;
        case Qt.Key_Right:
            grid.screen.step(1);
            break;
        case Qt.Key_Down:
        case Qt.Key_J:
            grid.screen.selectNext(1);
            break;
        case Qt.Key_Up:
        case Qt.Key_K:
            grid.screen.selectNext(-1);
            break;
        case Qt.Key_T:
            grid.screen.today();
            break;
        case Qt.Key_W:
            grid.screen.week = true;
            break;
        case Qt.Key_D:
            grid.screen.week = false;
            break;
        case Qt.Key_N:
            grid.newPressed();
            break;
        case Qt.Key_P:
            grid.screen.prepare(grid.screen.selected);
            break;
        case Qt.Key_Return:
        case Qt.Key_Enter:
            grid.screen.join(grid.screen.selected);
            break;
        default:
            event.accepted = false;
        }
    }

    Row {
        id: heads
        x: grid.gutter
        height: 40
        Repeater {
            model: grid.tiles.days.length
            Item {
                id: head
                required property int index
                readonly property dayHead day: grid.tiles.days[index] ?? grid.noDay
                width: grid.columnWidth
                height: heads.height
                Row {
                    x: Theme.small
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: Theme.tight
                    Label {
                        text: head.day.name
                        color: head.day.today ? Theme.accent : Theme.soft
                        font.weight: head.day.today ? Theme.strong : Theme.regular
                    }
                    Label {
                        text: head.day.number
                        color: head.day.today ? Theme.accent : Theme.text
                        font.weight: Theme.strong
                    }
                }
            }
        }
    }
    Item {
        id: allDay
        anchors.top: heads.bottom
        x: grid.gutter
        width: grid.columnWidth * grid.columns
        height: grid.tiles.allDayRows * 26
        Repeater {
            model: grid.tiles.allDay
            EventTile {
                id: whole
                selected: grid.screen.selected === event.id
                x: event.day * grid.columnWidth + 2
                y: event.lane * 26
                width: event.days * grid.columnWidth - 4
                height: 24
                onClicked: grid.screen.select(whole.event.id)
            }
        }
    }
    Rectangle {
        id: edge
        anchors.top: allDay.bottom
        anchors.topMargin: grid.tiles.allDayRows > 0 ? Theme.tight : 0
        width: parent.width
        height: 1
        color: Theme.line
    }
    Flickable {
        id: view
        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        contentHeight: grid.hours * grid.hourHeight + Theme.large
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: ScrollBar {}

        Repeater {
            model: grid.hours + 1
            Item {
                id: hour
                required property int index
                y: Theme.small + index * grid.hourHeight
                width: view.width
                Label {
                    width: grid.gutter - Theme.small
                    anchors.verticalCenter: parent.top
                    horizontalAlignment: Text.AlignRight
                    text: (grid.tiles.firstHour + hour.index).toString().padStart(2, "0") + ":00"
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                }
                Rectangle {
                    x: grid.gutter
                    width: grid.columnWidth * grid.columns
                    height: 1
                    color: Theme.line
                    opacity: 0.6
                }
            }
        }
        Repeater {
            model: grid.columns
            Rectangle {
                required property int index
                x: grid.gutter + index * grid.columnWidth
                width: 1
                height: view.contentHeight
                color: Theme.line
            }
        }
        Repeater {
            model: grid.tiles.gaps.length
            Label {
                required property int index
                readonly property freeGap gap: grid.tiles.gaps[index] ?? grid.noGap
                x: grid.gutter + gap.day * grid.columnWidth
                y: Theme.small + gap.top * grid.hourHeight
                width: grid.columnWidth
                height: gap.height * grid.hourHeight
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                text: gap.text
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
        }
        Repeater {
            model: grid.tiles.blocks
            EventTile {
                id: tile
                required property int index
                readonly property bool shown: index < grid.tiles.blockCount
                visible: shown
                selected: shown && grid.screen.selected === event.id
                x: grid.gutter + event.day * grid.columnWidth + 2 + event.lane * (grid.columnWidth - 4) / event.lanes
                y: Theme.small + event.top * grid.hourHeight + 1
                width: (grid.columnWidth - 4) / event.lanes - 1
                height: event.height * grid.hourHeight - 2
                onClicked: {
                    grid.forceActiveFocus(Qt.MouseFocusReason);
                    grid.screen.select(tile.event.id);
                }
                onJoined: grid.screen.join(tile.event.id)
                onSelectedChanged: if (selected) view.reveal(y, height)
            }
        }
        Rectangle {
            visible: grid.tiles.nowDay >= 0 && grid.tiles.nowHour >= 0 && grid.tiles.nowHour <= grid.hours
            x: grid.gutter + grid.tiles.nowDay * grid.columnWidth
            y: Theme.small + grid.tiles.nowHour * grid.hourHeight
            width: grid.columnWidth
            height: 2
            color: Theme.accent
        }

        function reveal(top: real, length: real) {
            if (top < contentY)
                contentY = Math.max(0, top - Theme.large);
            else if (top + length > contentY + height)
                contentY = Math.min(Math.max(0, contentHeight - height), top + length - height + Theme.large);
        }
    }
    KeyboardFocus { id: keyboard; target: grid }
    FocusRing {
        control: grid
        anchors.margins: 2
        shown: keyboard.shown && grid.screen.selected === ""
    }
}
