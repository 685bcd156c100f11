import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What can be done with one person of the list.
Menu {
    id: menu

    required property InboxView inbox
    property string contactId
    property bool isUnread
    property bool isMuted

    objectName: "contactMenu"

    /// At the pointer, or below the row if a key opened it.
    function show(row: ContactRow, under: Item) {
        contactId = row.contact.id;
        isUnread = row.contact.unread > 0;
        isMuted = row.contact.isMuted;
        if (under)
            popup(under, Theme.large, under.height);
        else
            popup();
    }

    MenuItem {
        icon.name: "go-next"
        text: qsTr("Open")
        onTriggered: menu.inbox.person.select(menu.contactId)
    }
    MenuItem {
        objectName: "contactMenu.read"
        icon.name: "mail-mark-read"
        text: menu.isUnread ? qsTr("Mark as read") : qsTr("Mark as unread")
        key: Commands.keysOf("unread")
        onTriggered: menu.inbox.actions.toggleRead(menu.contactId)
    }
    MenuItem {
        icon.name: menu.isMuted ? "notifications" : "notifications-disabled"
        text: menu.isMuted ? qsTr("Unmute") : qsTr("Mute")
        key: Commands.keysOf("mute")
        onTriggered: menu.inbox.actions.mute([menu.contactId])
    }
    MenuItem {
        icon.name: menu.inbox.actions.unarchives ? "mail-unarchive" : "mail-archive"
        text: menu.inbox.actions.archiveLabel
        key: Commands.keysOf("archive")
        onTriggered: menu.inbox.actions.archive([menu.contactId])
    }
    MenuSeparator {}
    MenuItem {
        icon.name: "select"
        text: qsTr("Pick")
        key: Commands.keysOf("check")
        onTriggered: menu.inbox.actions.bulk.toggle(menu.contactId)
    }
}
