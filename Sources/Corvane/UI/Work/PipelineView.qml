import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Deals by stage. A deal is dragged to another stage, or moved with Alt and an arrow; Return opens its person.
FocusScope {
    id: view

    required property GTMHub hub

    signal itemOpened(id: string)

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        spacing: Theme.small
        PlaceHead {
            width: parent.width
            title: qsTr("Pipeline")
            BeginMenu {
                shell: view.hub.shell
                actions: view.hub.shell.header.topActions
            }
            Button {
                objectName: "work.newItem"
                kind: "primary"
                text: qsTr("New item")
                hint: Commands.keysOf("newWork")
                onClicked: view.hub.shell.create.begin("item")
            }
        }
        MetricLine {
            width: parent.width
            metrics: view.hub.metrics
        }
        Banner {
            width: parent.width
            visible: text !== ""
            tone: "bad"
            text: view.hub.error
        }
    }
    Flickable {
        id: stages
        anchors.top: head.bottom
        anchors.topMargin: Theme.large
        width: parent.width
        height: work.visible ? (parent.height - y) * 0.66 : parent.height - y
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
                model: view.hub.stageCount
                StageLane {
                    required property int index
                    stage: view.hub.stage(index)
                    objectName: "pipeline.stage:" + stage.title
                    width: 208
                    height: row.height
                    dragged: ghost.deal.id
                    onMoved: (id, by) => view.hub.moveDealBy(id, by)
                    onDropped: id => view.hub.moveDeal(id, index)
                    onOpened: contact => view.hub.openPerson(contact)
                    onLifted: (deal, place) => ghost.lift(deal, place)
                    onCarried: place => ghost.carry(place)
                    onReleased: ghost.release()
                }
            }
        }
    }
    EmptyState {
        anchors.centerIn: stages
        width: Math.min(380, parent.width)
        visible: view.hub.emptyTitle !== ""
        icon: "hub-gtm"
        title: view.hub.emptyTitle
        detail: view.hub.emptyText
    }
    Column {
        id: work
        anchors.top: stages.bottom
        anchors.bottom: parent.bottom
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        visible: view.hub.items.count > 0
        SectionHeader { topPadding: Theme.small; bottomPadding: Theme.tight; text: qsTr("Open work") }
        WorkList {
            width: parent.width
            height: work.height - y
            model: view.hub.items
            name: qsTr("Open work")
            onOpened: id => view.itemOpened(id)
        }
    }
    Item {
        id: ghost

        property workDeal deal
        property workDeal none

        function lift(what: workDeal, place: point) {
            deal = what;
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
            deal = none;
        }

        width: 200
        height: 44
        z: 10
        visible: Drag.active
        Drag.hotSpot.x: width / 2
        Drag.hotSpot.y: 20
        Drag.keys: ["corvane.work.deal"]
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
                text: ghost.deal.name
                font.weight: Theme.strong
            }
        }
    }
}
