import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Who waits, longest first; beside it the thread and the open work of the chosen one.
FocusScope {
    id: view

    required property CXHub hub

    signal itemOpened(id: string)

    PlaceHead {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        title: qsTr("Waiting")
        detail: view.hub.queueText
        BeginMenu {
            shell: view.hub.shell
            actions: view.hub.shell.header.topActions
        }
    }
    ListView {
        id: list
        objectName: "queue.list"
        anchors.top: head.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        x: Theme.medium
        width: Math.min(360, parent.width * 0.44)
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        keyNavigationEnabled: false
        model: view.hub.queue
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Waiting")
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onDownPressed: view.hub.step(1)
        Keys.onUpPressed: view.hub.step(-1)
        Keys.onReturnPressed: view.hub.reply()

        KeyboardFocus { id: keyboard; target: list }

        delegate: WaitingLine {
            objectName: "queue.person:" + person.name
            width: ListView.view.width
            current: view.hub.selected === person.contactId
            ringed: current && keyboard.shown
            onClicked: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                view.hub.select(person.contactId);
            }
        }
    }
    Rectangle {
        id: edge
        anchors.left: list.right
        anchors.leftMargin: Theme.medium
        anchors.top: head.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        width: 1
        visible: list.count > 0
        color: Theme.line
    }
    FocusScope {
        anchors.left: edge.right
        anchors.right: parent.right
        anchors.top: head.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        visible: list.count > 0
        Accessible.role: Accessible.Pane
        Accessible.name: view.hub.name

        Item {
            id: who
            x: Theme.wide
            width: parent.width - Theme.wide * 2
            height: 44
            Column {
                width: reply.x - Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                Label {
                    width: parent.width
                    text: view.hub.name
                    font.pixelSize: Theme.title
                    font.weight: Theme.strong
                }
                Label {
                    width: parent.width
                    text: view.hub.facts
                    font.pixelSize: Theme.meta
                    color: Theme.soft
                }
            }
            Row {
                id: reply
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: Theme.small
                Button {
                    objectName: "queue.ticket"
                    text: qsTr("New ticket")
                    onClicked: view.hub.newTicket()
                }
                Button {
                    objectName: "queue.reply"
                    kind: "primary"
                    icon.name: "mail-reply"
                    text: qsTr("Reply")
                    onClicked: view.hub.reply()
                }
            }
        }
        ListView {
            id: thread
            objectName: "queue.thread"
            anchors.top: who.bottom
            anchors.topMargin: Theme.small
            anchors.bottom: work.top
            x: Theme.wide
            width: parent.width - Theme.wide * 2
            clip: true
            spacing: Theme.tight
            boundsBehavior: Flickable.StopAtBounds
            activeFocusOnTab: count > 0 || activeFocus
            model: view.hub.thread
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Messages")
            T.ScrollBar.vertical: ScrollBar {}
            onCountChanged: positionViewAtEnd()
            onHeightChanged: positionViewAtEnd()
            delegate: Item {
                id: line
                required property queueMessage message
                width: ListView.view.width
                height: bubble.height
                Accessible.role: Accessible.ListItem
                Accessible.name: message.time + ": " + message.body
                Rectangle {
                    id: bubble
                    anchors.right: line.message.mine ? parent.right : undefined
                    width: Math.min(parent.width * 0.72, words.implicitWidth + Theme.medium * 2)
                    height: column.height + Theme.small * 2
                    radius: Theme.bubbleRadius
                    color: line.message.mine ? Theme.tint : Theme.surface
                    border.width: line.message.mine ? 0 : 1
                    border.color: Theme.line
                    Column {
                        id: column
                        x: Theme.medium
                        y: Theme.small
                        width: parent.width - Theme.medium * 2
                        Label {
                            id: words
                            width: parent.width
                            wrapMode: Text.Wrap
                            elide: Text.ElideNone
                            text: line.message.body
                            Accessible.ignored: true
                        }
                        Label {
                            text: line.message.time
                            font.pixelSize: Theme.meta
                            color: Theme.faint
                            Accessible.ignored: true
                        }
                    }
                }
            }
        }
        FocusRing { control: thread; anchors.fill: thread; anchors.margins: 2 }
        Column {
            id: work
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.medium
            x: Theme.wide
            width: parent.width - Theme.wide * 2
            SectionHeader { topPadding: Theme.medium; bottomPadding: Theme.tight; text: qsTr("Open work") }
            Label {
                visible: text !== ""
                text: view.hub.itemsText
                color: Theme.faint
            }
            WorkList {
                width: parent.width
                height: Math.min(144, view.hub.items.count * 48)
                model: view.hub.items
                name: qsTr("Open work")
                onOpened: id => view.itemOpened(id)
            }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(380, parent.width)
        visible: list.count === 0
        icon: "dialog-ok"
        title: view.hub.emptyTitle
        detail: view.hub.emptyText
    }
}
