import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Projects, and the open one with its terminals, news, questions and orders.
FocusScope {
    id: view

    required property OpsProjects projects

    ListView {
        id: list
        objectName: "projects.list"
        width: Math.min(300, parent.width * 0.36)
        height: parent.height
        focus: true
        clip: true
        topMargin: Theme.medium
        bottomMargin: Theme.medium
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.projects.projects
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Projects")
        T.ScrollBar.vertical: ScrollBar {}

        KeyboardFocus { id: keyboard; target: list }
        onCurrentItemChanged: if (activeFocus && currentItem)
            view.projects.select((currentItem as ProjectLine).project.id)

        delegate: ProjectLine {
            x: Theme.small
            width: list.width - Theme.small * 2
            objectName: "project:" + project.name
            current: view.projects.selected === project.id
            ringed: current && keyboard.shown
            onClicked: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                view.projects.select(project.id);
            }
        }
    }
    Rectangle {
        id: edge
        anchors.left: list.right
        width: 1
        height: parent.height
        visible: list.count > 0
        color: Theme.line
    }
    Flickable {
        id: scroll
        anchors.left: edge.right
        anchors.right: parent.right
        height: parent.height
        visible: list.count > 0
        clip: true
        contentHeight: column.height + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }

        Column {
            id: column
            x: Theme.wide
            y: Theme.large
            width: scroll.width - Theme.wide * 2
            spacing: Theme.small

            PlaceHead {
                width: parent.width
                title: view.projects.title
                detail: view.projects.goal
            }
            Label {
                width: parent.width
                visible: text !== ""
                text: view.projects.facts
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
            SectionHeader { topPadding: Theme.medium; text: qsTr("Terminals") }
            Label {
                visible: view.projects.tabs.count === 0
                text: qsTr("No terminal reports to this project.")
                color: Theme.faint
            }
            Repeater {
                model: view.projects.tabs
                TabLine {
                    width: column.width
                    chosen: view.projects.orderTab === tab.id
                    onClicked: view.projects.orderTab = tab.id
                }
            }
            OrderBox {
                width: parent.width
                visible: view.projects.orderTab !== ""
                projects: view.projects
            }
            SectionHeader { topPadding: Theme.medium; text: qsTr("Asks") }
            Label {
                visible: view.projects.asks.asks.count === 0
                text: view.projects.asks.emptyTitle
                color: Theme.faint
            }
            Repeater {
                model: view.projects.asks.asks
                AskCard {
                    width: column.width
                    onAnswerPressed: view.projects.asks.beginAnswer(ask.id)
                }
            }
            SectionHeader { topPadding: Theme.medium; text: qsTr("Updates") }
            Label {
                visible: view.projects.updates.count === 0
                text: qsTr("No updates yet.")
                color: Theme.faint
            }
            Repeater {
                model: view.projects.updates
                DetailLine { width: column.width }
            }
            SectionHeader {
                topPadding: Theme.medium
                visible: view.projects.orders.count > 0
                text: qsTr("Orders")
            }
            Repeater {
                model: view.projects.orders
                DetailLine { width: column.width }
            }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(380, parent.width)
        visible: list.count === 0
        icon: "computer"
        title: view.projects.emptyTitle
        detail: view.projects.emptyText
    }
}
