import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Today's work of every process, the questions that wait, and what happened last.
FocusScope {
    id: view

    required property OpsHub hub
    readonly property bool roomy: width >= 860

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        spacing: Theme.small
        PlaceHead {
            width: parent.width
            title: qsTr("Home")
            detail: view.hub.activeText
            BeginMenu {
                objectName: "ops.actions"
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
            metrics: view.hub.shell.header.metrics
        }
    }
    Rectangle {
        id: line
        anchors.top: head.bottom
        anchors.topMargin: Theme.medium
        width: parent.width
        height: 1
        color: Theme.line
    }
    BoardView {
        anchors.top: line.bottom
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: side.visible ? side.left : parent.right
        focus: true
        board: view.hub.shell.board
        current: view.hub.shell.item.itemId
        onOpened: id => view.hub.shell.item.open(id)
    }
    Flickable {
        id: side
        anchors.top: line.bottom
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: visible ? 320 : 0
        visible: view.roomy
        clip: true
        contentHeight: column.height + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: side }

        Rectangle {
            width: 1
            height: Math.max(side.height, side.contentHeight)
            color: Theme.line
        }
        Column {
            id: column
            x: Theme.large
            y: Theme.large
            width: side.width - Theme.large * 2
            spacing: Theme.small
            SectionHeader { text: qsTr("Asks") }
            Label {
                width: parent.width
                visible: view.hub.asks.asks.count === 0
                wrapMode: Text.Wrap
                text: view.hub.asks.emptyTitle
                color: Theme.faint
            }
            Repeater {
                model: view.hub.asks.asks
                AskCard {
                    width: column.width
                    onAnswerPressed: view.hub.asks.beginAnswer(ask.id)
                }
            }
            SectionHeader { topPadding: Theme.medium; text: qsTr("Decisions and news") }
            Label {
                width: parent.width
                visible: view.hub.latest.count === 0
                wrapMode: Text.Wrap
                text: qsTr("No decisions yet. They appear when an agent proposes one.")
                color: Theme.faint
            }
            Repeater {
                model: view.hub.latest
                TimelineLine {
                    width: column.width
                    dated: true
                }
            }
        }
    }
}
