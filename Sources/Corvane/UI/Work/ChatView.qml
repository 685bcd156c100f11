import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Questions about a context, and what was answered from its rows.
FocusScope {
    id: view

    required property WorkTerminalChat chat
    required property string log
    property bool logOpen

    signal sourceOpened(source: string)

    function send() {
        if (chat.ask(field.text))
            field.text = "";
    }

    Item {
        id: head
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        height: 40
        SectionHeader {
            id: name
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Terminal Chat")
        }
        Label {
            anchors.left: name.right
            anchors.leftMargin: Theme.small
            anchors.baseline: name.baseline
            text: qsTr("context-linked")
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        Button {
            objectName: "chat.log"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 28
            kind: "quiet"
            text: view.logOpen ? qsTr("Hide the log") : qsTr("Show as a log")
            onClicked: view.logOpen = !view.logOpen
        }
    }
    Flickable {
        id: logPane
        anchors.top: head.bottom
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        height: view.logOpen ? Math.min(180, lines.height + Theme.medium * 2) : 0
        visible: view.logOpen
        clip: true
        contentHeight: lines.height + Theme.medium * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        Rectangle {
            width: logPane.width
            height: Math.max(logPane.height, logPane.contentHeight)
            radius: Theme.controlRadius
            color: Theme.raised
        }
        Label {
            id: lines
            x: Theme.medium
            y: Theme.medium
            width: logPane.width - Theme.medium * 2
            wrapMode: Text.Wrap
            text: view.log
            font.family: "monospace"
            font.pixelSize: Theme.meta
            color: Theme.soft
        }
    }
    ListView {
        id: list
        objectName: "chat.lines"
        anchors.top: logPane.bottom
        anchors.topMargin: view.logOpen ? Theme.small : 0
        anchors.bottom: status.top
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        clip: true
        spacing: Theme.medium
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.chat.lines
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Terminal Chat")
        T.ScrollBar.vertical: ScrollBar {}
        property bool following: true
        onMovementEnded: following = atYEnd
        onCountChanged: if (following) positionViewAtEnd()
        onHeightChanged: if (following) positionViewAtEnd()
        header: Item {
            width: list.width
            height: view.chat.earlierText ? 40 : 0
            Button {
                anchors.centerIn: parent
                visible: view.chat.earlierText !== ""
                kind: "quiet"
                text: view.chat.earlierText
                onClicked: {
                    list.following = false;
                    view.chat.showEarlier();
                }
            }
        }
        delegate: ChatLine {
            width: ListView.view.width
            onSourceOpened: source => view.sourceOpened(source)
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
    EmptyState {
        anchors.centerIn: list
        width: Math.min(360, parent.width)
        visible: view.chat.emptyTitle !== ""
        icon: "hub-lumo"
        title: view.chat.emptyTitle
        detail: view.chat.emptyText
    }
    Label {
        id: status
        objectName: "chat.status"
        anchors.bottom: composer.top
        anchors.bottomMargin: Theme.tight
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        height: text ? implicitHeight : 0
        wrapMode: Text.Wrap
        text: view.chat.status
        font.pixelSize: Theme.meta
        color: view.chat.statusIsError ? Theme.bad : Theme.soft
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Item {
        id: composer
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.medium
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        height: field.height
        TextBox {
            id: field
            objectName: "chat.field"
            width: actions.x - Theme.small
            focus: true
            maximumLines: 6
            returnSubmits: true
            enabled: view.chat.contextAvailable
            placeholderText: view.chat.placeholder
            onSubmitted: view.send()
        }
        Row {
            id: actions
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            spacing: Theme.small
            Button {
                objectName: "chat.cancel"
                visible: view.chat.busy
                kind: "quiet"
                text: qsTr("Cancel")
                onClicked: view.chat.cancel()
            }
            Button {
                objectName: "chat.ask"
                kind: "primary"
                enabled: view.chat.contextAvailable && !view.chat.busy && field.text.trim() !== ""
                text: view.chat.actionLabel
                hint: view.chat.hint
                onClicked: view.send()
            }
        }
    }
}
