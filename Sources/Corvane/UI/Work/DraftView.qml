import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// What was said in a context, and a reply that is kept as work until the user releases it.
FocusScope {
    id: view

    required property WorkModuleShell shell

    function queue() {
        if (view.shell.queueDraft(field.text))
            field.text = "";
    }

    ListView {
        id: list
        anchors.top: parent.top
        anchors.topMargin: Theme.medium
        anchors.bottom: composer.top
        anchors.bottomMargin: Theme.medium
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        clip: true
        spacing: Theme.medium
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.shell.chat.lines
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Inbox")
        T.ScrollBar.vertical: ScrollBar {}
        Component.onCompleted: positionViewAtEnd()
        delegate: ChatLine {
            width: ListView.view.width
            onSourceOpened: source => view.shell.openSource(source)
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
    EmptyState {
        anchors.centerIn: list
        width: Math.min(400, parent.width)
        visible: list.count === 0
        icon: "hub-inbox"
        title: qsTr("No inbox messages yet")
        detail: qsTr("Messages by people and agents in this context appear here. A draft is saved as a work item, with a decision that waits for you.")
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
            objectName: "draft.field"
            width: send.x - Theme.small
            focus: true
            maximumLines: 6
            placeholderText: qsTr("Draft reply via approved channel...")
            onSubmitted: view.queue()
        }
        Button {
            id: send
            objectName: "draft.queue"
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            kind: "primary"
            enabled: field.text.trim() !== ""
            text: qsTr("Queue Draft")
            onClicked: view.queue()
        }
    }
}
