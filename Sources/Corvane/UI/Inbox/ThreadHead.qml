import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// Whose thread it is, and what can be done with it.
Rectangle {
    id: head

    required property InboxView inbox
    required property contactItem contact
    required property bool contactShown

    signal toggleContact

    implicitHeight: 60
    color: Theme.surface

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
    Avatar {
        id: face
        x: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        width: 36
        hue: head.contact.hue
        initials: head.contact.initials
        photo: head.contact.avatarPath
        group: head.contact.isGroup
    }
    Column {
        anchors.left: face.right
        anchors.leftMargin: Theme.medium
        anchors.right: tools.left
        anchors.rightMargin: Theme.medium
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        Row {
            width: parent.width
            spacing: 6
            Label {
                width: Math.min(implicitWidth, parent.width - (muted.visible ? 20 : 0))
                text: head.contact.name
                font.pixelSize: Theme.title
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
            }
            Icon {
                id: muted
                anchors.verticalCenter: parent.verticalCenter
                visible: head.contact.isMuted
                name: "notifications-disabled"
                size: 14
                color: Theme.faint
            }
        }
        Row {
            spacing: Theme.small
            Repeater {
                model: head.contact.platforms
                Row {
                    id: channel
                    required property int index
                    required property string modelData
                    spacing: Theme.tight
                    ChannelMark {
                        anchors.verticalCenter: parent.verticalCenter
                        channel: channel.modelData
                        size: 12
                        color: Theme.faint
                    }
                    Label {
                        text: head.contact.platformLabels[channel.index] ?? ""
                        font.pixelSize: Theme.meta
                        color: Theme.soft
                    }
                }
            }
        }
    }
    Row {
        id: tools
        anchors.right: parent.right
        anchors.rightMargin: Theme.medium
        anchors.verticalCenter: parent.verticalCenter

        IconButton {
            objectName: "thread.call"
            visible: head.inbox.person.messageActions.canCall
            icon.name: "call-start"
            text: head.inbox.person.messageActions.callLabel
            onClicked: head.inbox.person.messageActions.callOnWhatsApp()
        }
        IconButton {
            objectName: "thread.mute"
            icon.name: head.contact.isMuted ? "notifications" : "notifications-disabled"
            text: head.contact.isMuted ? qsTr("Unmute") : qsTr("Mute")
            key: Commands.keysOf("mute")
            onClicked: head.inbox.actions.muteSelected()
        }
        IconButton {
            objectName: "thread.archive"
            icon.name: head.inbox.actions.unarchives ? "mail-unarchive" : "mail-archive"
            text: head.inbox.actions.archiveLabel
            key: Commands.keysOf("archive")
            onClicked: head.inbox.actions.archiveSelected()
        }
        IconButton {
            objectName: "thread.contact"
            icon.name: "view-right-pane"
            checked: head.contactShown
            text: head.contactShown ? qsTr("Hide the contact") : qsTr("Show the contact")
            key: Commands.keysOf("contactPane")
            onClicked: head.toggleContact()
        }
    }
}
