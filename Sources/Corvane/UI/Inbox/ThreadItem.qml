import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A line of the thread: a day, or one message's bubble with what surrounds it.
Item {
    id: threadItem

    required property threadRow message


    required property OpenPerson person
    readonly property ThreadView thread: person.thread
    property bool ringed: false

    function openMenu() {
        if (message.isDate)
            return;
        menu.active = true;
        (menu.item as MessageMenu).popup(bubble, 0, bubble.height + Theme.tight);
    }

    implicitHeight: message.isDate ? 44 : column.y + column.height
    Accessible.role: message.isDate ? Accessible.Separator : Accessible.ListItem
    Accessible.name: message.spoken
    Accessible.onPressAction: openMenu()

    DaySeparator {
        visible: threadItem.message.isDate
        width: parent.width
        text: threadItem.message.dateText
    }
    Column {
        id: column
        visible: !threadItem.message.isDate
        y: threadItem.message.grouped && !switched.visible ? 2 : Theme.medium
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        spacing: Theme.tight

        DaySeparator {
            visible: threadItem.message.unreadText !== ""
            x: -Theme.wide
            width: threadItem.width
            text: threadItem.message.unreadText
            ink: Theme.accent
        }
        Row {
            id: switched
            visible: threadItem.message.channelLabel !== ""
            anchors.right: threadItem.message.outgoing ? parent.right : undefined
            anchors.rightMargin: Theme.tight
            leftPadding: threadItem.message.outgoing ? 0 : Theme.tight
            spacing: Theme.tight
            ChannelMark {
                anchors.verticalCenter: parent.verticalCenter
                channel: switched.visible ? threadItem.message.platform : ""
                size: 12
                color: Theme.faint
            }
            Label {
                text: threadItem.message.channelLabel
                font.pixelSize: Theme.meta
                color: Theme.faint
                Accessible.ignored: true
            }
        }
        Label {
            visible: threadItem.message.senderLabel !== ""
            leftPadding: Theme.tight
            text: threadItem.message.senderLabel
            font.pixelSize: Theme.meta
            font.weight: Theme.strong
            color: Theme.soft
            Accessible.ignored: true
        }
        Bubble {
            id: bubble
            anchors.right: threadItem.message.outgoing ? parent.right : undefined
            message: threadItem.message
            person: threadItem.person
            ringed: threadItem.ringed
            maximumWidth: Math.floor(Math.min(threadItem.width, 1100) * 0.68)
        }
        Item { width: 1; height: visible ? 10 : 0; visible: threadItem.message.reaction !== "" }
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: threadItem.openMenu()
    }
    TapHandler {
        acceptedDevices: PointerDevice.TouchScreen
        onLongPressed: threadItem.openMenu()
    }
    HoverHandler { id: over }
    Loader {
        active: over.hovered && !threadItem.message.isDate
        x: column.x + (threadItem.message.outgoing ? bubble.x - width - Theme.tight : bubble.width + Theme.tight)
        y: column.y + bubble.y + (bubble.height - height) / 2
        sourceComponent: IconButton {
            objectName: "message.more"
            size: 28
            focusPolicy: Qt.NoFocus
            icon.name: "overflow-menu"
            text: qsTr("Show its actions")
            key: "Return"
            onClicked: threadItem.openMenu()
        }
    }
    Loader {
        id: menu
        active: false
        sourceComponent: MessageMenu {
            messageId: threadItem.message.id
            person: threadItem.person
        }
    }
}
