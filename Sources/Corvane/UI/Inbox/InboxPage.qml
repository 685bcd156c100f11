import QtQuick
import Corvane.Approvals
import Corvane.Controls
import Corvane.Inbox

/// The list, the open thread, and the person it belongs to.
Page {
    id: page

    required property InboxView screen
    readonly property InboxView inbox: screen

    readonly property bool open: inbox.person.selectedId !== ""
    readonly property bool narrow: width < 1200
    /// Hidden below 1200 px until it is opened.
    property bool contactAskedFor: false
    readonly property bool contactShown: open && (narrow ? contactAskedFor : inbox.person.showCRM)

    panes: [list, bar, thread, panels, reply, contact]
    Component.onCompleted: inbox.appear()
    onNarrowChanged: contactAskedFor = false

    function act(command: string) {
        switch (command) {
        case "search":
            list.search();
            break;
        case "next":
            inbox.person.moveSelection(1);
            break;
        case "previous":
            inbox.person.moveSelection(-1);
            break;
        case "checkAll":
            inbox.actions.bulk.all();
            break;
        case "archive":
            if (inbox.actions.bulk.active)
                inbox.actions.archiveChecked();
            else
                inbox.actions.archiveSelected();
            break;
        case "mute":
            if (inbox.actions.bulk.active)
                inbox.actions.muteChecked();
            else
                inbox.actions.muteSelected();
            break;
        case "unread":
            if (open)
                inbox.actions.toggleRead(inbox.person.selectedId);
            break;
        case "reply":
            if (reply.visible)
                reply.focusField();
            break;
        case "assistant":
            if (reply.visible)
                reply.openAssistant();
            break;
        case "undo":
            inbox.actions.undo();
            break;
        case "contactPane":
            toggleContact();
            break;
        case "back":
            back();
            break;
        }
    }

    function toggleContact() {
        if (narrow)
            contactAskedFor = !contactAskedFor;
        else
            inbox.person.showCRM = !inbox.person.showCRM;
    }

    function back() {
        if (inbox.reply.composer.voice.dictation.state !== "idle") {
            inbox.reply.composer.voice.dictation.cancel();
        } else if (narrow && contactAskedFor) {
            contactAskedFor = false;
            thread.forceActiveFocus(Qt.TabFocusReason);
        } else if (inbox.actions.bulk.active) {
            inbox.actions.bulk.clear();
        } else if (panels.activeFocus) {
            panels.back();
        } else if (reply.activeFocus && open) {
            thread.forceActiveFocus(Qt.TabFocusReason);
        } else if (thread.activeFocus || bar.activeFocus || contact.activeFocus) {
            list.forceActiveFocus(Qt.TabFocusReason);
        } else if (inbox.filters.search) {
            inbox.filters.search = "";
        } else {
            inbox.person.select("");
        }
    }

    Connections {
        target: page.inbox.person
        function onPaneAsked(section: string) {
            if (page.narrow)
                page.contactAskedFor = true;
            else
                page.inbox.person.showCRM = true;
            contact.reveal(section);
        }
    }

    ListPane {
        id: list
        width: page.layout.listWidth
        height: parent.height
        focus: true
        inbox: page.inbox
        onEntered: thread.forceActiveFocus(Qt.TabFocusReason)
        onOpenSettings: page.openSettings("")
    }
    DragHandle {
        id: listEdge
        objectName: "inbox.listEdge"
        anchors.left: list.right
        height: parent.height
        name: qsTr("Width of the list")
        paneWidth: page.layout.listWidth
        onMoved: width => page.layout.listWidth = width
    }
    DraftsBar {
        id: bar
        anchors.left: thread.left
        anchors.right: thread.right
        height: implicitHeight
        drafts: page.inbox.drafts
        onEmptied: (page.open ? thread : list).forceActiveFocus(Qt.OtherFocusReason)
    }
    ThreadPane {
        id: thread
        anchors.top: bar.bottom
        anchors.bottom: panels.visible ? panels.top : parent.bottom
        anchors.left: listEdge.right
        anchors.right: contact.visible && !page.narrow ? contactEdge.left : parent.right
        inbox: page.inbox
        contactShown: page.contactShown
        onToggleContact: page.toggleContact()
    }
    AssistantPanels {
        id: panels
        anchors.bottom: reply.top
        anchors.left: thread.left
        anchors.right: thread.right
        height: implicitHeight
        inbox: page.inbox
        room: page.height - bar.height - reply.height - 160
        onEmptied: reply.focusField()
        onSettingsAsked: page.openSettings("assistant")
    }
    ReplyPane {
        id: reply
        anchors.bottom: parent.bottom
        anchors.left: thread.left
        anchors.right: thread.right
        height: implicitHeight
        inbox: page.inbox
        onAskLumo: askLumo.open()
    }
    DragHandle {
        id: contactEdge
        objectName: "inbox.contactEdge"
        anchors.right: contact.left
        height: parent.height
        visible: contact.visible
        z: 3
        name: qsTr("Width of the contact")
        paneWidth: page.layout.contactWidth
        paneIsRight: true
        onMoved: width => page.layout.contactWidth = width
    }
    ContactPane {
        id: contact
        x: page.width - width
        width: page.layout.contactWidth
        height: parent.height
        visible: page.contactShown
        over: page.narrow
        inbox: page.inbox
        layout: page.layout
    }

    AskLumoSheet {
        id: askLumo
        askLumo: page.inbox.reply.askLumo
        onSettingsAsked: page.openSettings("assistant")
    }
    NewMessage { compose: page.inbox.composeSheet }
    UndoToast {
        actions: page.inbox.actions
        anchors.bottom: thread.bottom
        anchors.bottomMargin: Theme.wide
        anchors.horizontalCenter: parent.horizontalCenter
    }
}
