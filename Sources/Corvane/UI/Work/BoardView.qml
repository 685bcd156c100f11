import QtQuick
import QtQml
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Items in lanes. A card is dragged to another lane, or moved with Alt and an arrow; Return opens it.
FocusScope {
    id: view

    required property WorkBoard board
    property string current ///< the item that is open

    signal opened(id: string)

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Board")

    Item {
        id: filters

        readonly property bool narrow: width < 200 + menus.width + clear.implicitWidth + Theme.small * 2

        x: Theme.wide
        y: Theme.medium
        width: parent.width - Theme.wide * 2
        height: narrow ? search.height + Theme.tight + menus.height : search.height

        SearchField {
            id: search
            objectName: "board.words"
            width: !filters.narrow ? 200 : clear.visible ? parent.width - clear.width - Theme.small : parent.width
            placeholderText: qsTr("Filter")
            text: view.board.words
            onTextEdited: view.board.words = text
            onCleared: view.board.words = ""
            onLeave: lanes.forceActiveFocus(Qt.TabFocusReason)
        }
        Row {
            id: menus
            x: filters.narrow ? -Theme.small : search.width + Theme.small
            y: filters.narrow ? search.height + Theme.tight : (search.height - height) / 2

            FilterMenu {
                objectName: "board.owner"
                every: qsTr("Everybody")
                choices: view.board.owners
                chosen: view.board.owner
                onPicked: word => view.board.owner = word
            }
            FilterMenu {
                objectName: "board.priority"
                every: qsTr("Any priority")
                choices: view.board.priorities
                chosen: view.board.priority
                onPicked: word => view.board.priority = word
            }
            FilterMenu {
                objectName: "board.kind"
                every: qsTr("All kinds")
                choices: view.board.kinds
                chosen: view.board.kind
                onPicked: word => view.board.kind = word
            }
        }
        Chip {
            id: clear
            x: filters.narrow ? parent.width - width : menus.x + menus.width + Theme.small
            y: (search.height - height) / 2
            visible: view.board.filtered
            removable: true
            text: qsTr("Clear filters")
            onClicked: view.board.clearFilters()
        }
    }
    Banner {
        id: trouble
        anchors.top: filters.bottom
        anchors.topMargin: visible ? Theme.small : 0
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        height: visible ? implicitHeight : 0
        visible: text !== ""
        tone: "bad"
        text: view.board.error
    }
    Flickable {
        id: lanes
        anchors.top: trouble.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        clip: true
        contentWidth: row.width + Theme.wide * 2
        contentHeight: height
        boundsBehavior: Flickable.StopAtBounds
        flickableDirection: Flickable.HorizontalFlick
        T.ScrollBar.horizontal: ScrollBar {}

        Row {
            id: row
            x: Theme.wide
            height: parent.height
            spacing: Theme.medium
            Repeater {
                model: view.board.laneCount
                BoardLane {
                    required property int index
                    readonly property real fit: (lanes.width - Theme.wide * 2 - Theme.medium * (view.board.laneCount - 1)) / view.board.laneCount
                    lane: view.board.lane(index)
                    objectName: "board.lane:" + index
                    height: row.height
                    width: lane.folded ? 44 : Math.max(208, Math.min(280, fit))
                    current: view.current
                    dragged: ghost.item.id
                    onOpened: id => view.opened(id)
                    onMoved: (id, by) => view.board.moveBy(id, by)
                    onDropped: id => view.board.move(id, index)
                    onLifted: (item, place) => ghost.lift(item, place)
                    onCarried: place => ghost.carry(place)
                    onReleased: ghost.release()
                    onMoreAsked: view.board.showMore()
                }
            }
        }
    }
    EmptyState {
        anchors.centerIn: lanes
        width: Math.min(360, parent.width - Theme.wide * 2)
        visible: view.board.emptyTitle !== ""
        icon: "view-list"
        title: view.board.emptyTitle
        detail: view.board.emptyText
    }
    Item {
        id: ghost

        property workItem item
        property workItem none

        function lift(what: workItem, place: point) {
            item = what;
            carry(place);
            Drag.active = true;
        }
        function carry(place: point) {
            const at = view.mapFromItem(null, place.x, place.y);
            x = at.x - width / 2;
            y = at.y - 20;
        }
        function release() {
            Drag.drop();
            Drag.active = false;
            item = none;
        }

        width: 232
        height: 44
        z: 10
        visible: Drag.active
        Drag.hotSpot.x: width / 2
        Drag.hotSpot.y: 20
        Drag.keys: ["corvane.work.item"]
        Accessible.ignored: true

        Rectangle {
            anchors.fill: parent
            radius: Theme.cardRadius
            color: Theme.surface
            border.width: 1
            border.color: Theme.accent
            Shadow { radius: Theme.cardRadius }
            Label {
                anchors.fill: parent
                anchors.margins: Theme.medium
                verticalAlignment: Text.AlignVCenter
                text: ghost.item.title
                font.weight: Theme.strong
            }
        }
    }
}
