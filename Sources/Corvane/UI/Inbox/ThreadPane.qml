import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The messages with one person, and the actions on the conversation.
FocusScope {
    id: pane

    required property InboxView inbox
    required property bool contactShown

    readonly property ThreadView thread: inbox.person.thread
    readonly property contactItem contact: inbox.person.selected
    readonly property bool open: inbox.person.selectedId !== ""

    signal toggleContact

    enabled: open
    Accessible.role: Accessible.Pane
    Accessible.name: open ? qsTr("Conversation with %1").arg(contact.name) : qsTr("No conversation open")

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }
    ThreadHead {
        id: head
        width: parent.width
        visible: pane.open
        contact: pane.contact
        inbox: pane.inbox
        contactShown: pane.contactShown
        onToggleContact: pane.toggleContact()
    }
    Banner {
        id: error
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        x: Theme.large
        z: 2
        width: parent.width - Theme.large * 2
        visible: pane.open && text !== ""
        tone: pane.thread.errorText ? "bad" : "plain"
        text: pane.thread.errorText || pane.inbox.person.messageActions.noticeText
        dismissable: pane.thread.errorText !== ""
        onDismissed: pane.thread.errorText = ""
    }
    ThreadList {
        id: rows
        anchors.top: error.visible ? error.bottom : head.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        visible: pane.open
        person: pane.inbox.person
        Connections {
            target: pane.inbox.reply.composer
            function onSent() { rows.showNewest(); }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        width: 320
        visible: pane.open && pane.thread.isEmpty
        icon: "hub-inbox"
        title: pane.contact.name
        detail: pane.thread.emptyText
    }
    EmptyState {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -Theme.wide
        width: 320
        visible: !pane.open
        icon: "hub-inbox"
        title: qsTr("Pick a conversation")
        detail: qsTr("All channels of a person are in one thread.")
    }

    // Announced by the screen reader when idle; the focus does not move.
    Item {
        id: announcer
        property string text
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
        Connections {
            target: pane.thread
            function onAnnounced(text) {
                announcer.text = text;
                WindowTools.announce(announcer);
            }
        }
    }
}
