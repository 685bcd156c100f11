import QtQuick
import Corvane

/// A line of the thread: a day, or one message's bubble with what surrounds it.
Item {
    id: threadItem

    required property string id
    required property bool isDate
    required property string dateText
    required property bool outgoing
    required property bool grouped
    required property bool showTime
    required property string timeText
    required property string body
    required property string senderLabel
    required property string platform
    required property string channelLabel
    required property string ticks
    required property string ticksText
    required property string ticksHelp
    required property string mediaKind
    required property string mediaPath
    required property string mediaTitle
    required property string mediaState
    required property string mediaStateText
    required property string transcript
    required property string reaction
    required property bool highlighted
    required property string spoken

    required property string unreadText
    required property string moreText

    required property QtObject inbox
    readonly property QtObject thread: inbox.thread
    property bool ringed: false

    function openMenu() {
        if (isDate)
            return;
        menu.active = true;
        menu.item.popup(bubble, 0, bubble.height + Theme.tight);
    }

    implicitHeight: isDate ? 44 : column.y + column.height
    Accessible.role: isDate ? Accessible.Separator : Accessible.ListItem
    Accessible.name: spoken
    Accessible.onPressAction: openMenu()

    DaySeparator {
        visible: threadItem.isDate
        width: parent.width
        text: threadItem.dateText
    }
    Column {
        id: column
        visible: !threadItem.isDate
        y: threadItem.grouped && !switched.visible ? 2 : Theme.medium
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        spacing: Theme.tight

        DaySeparator {
            visible: threadItem.unreadText !== ""
            x: -Theme.wide
            width: threadItem.width
            text: threadItem.unreadText
            ink: Theme.accent
        }
        Row {
            id: switched
            visible: threadItem.channelLabel !== ""
            anchors.right: threadItem.outgoing ? parent.right : undefined
            anchors.rightMargin: Theme.tight
            leftPadding: threadItem.outgoing ? 0 : Theme.tight
            spacing: Theme.tight
            ChannelMark {
                anchors.verticalCenter: parent.verticalCenter
                channel: switched.visible ? threadItem.platform : ""
                size: 12
                color: Theme.faint
            }
            Label {
                text: threadItem.channelLabel
                font.pixelSize: Theme.meta
                color: Theme.faint
                Accessible.ignored: true
            }
        }
        Label {
            visible: threadItem.senderLabel !== ""
            leftPadding: Theme.tight
            text: threadItem.senderLabel
            font.pixelSize: Theme.meta
            font.weight: Theme.strong
            color: Theme.soft
            Accessible.ignored: true
        }
        Bubble {
            id: bubble
            anchors.right: threadItem.outgoing ? parent.right : undefined
            item: threadItem
            maximumWidth: Math.floor(Math.min(threadItem.width, 1100) * 0.68)
        }
        Item { width: 1; height: visible ? 10 : 0; visible: threadItem.reaction !== "" }
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
        active: over.hovered && !threadItem.isDate
        x: column.x + (threadItem.outgoing ? bubble.x - width - Theme.tight : bubble.width + Theme.tight)
        y: column.y + bubble.y + (bubble.height - height) / 2
        sourceComponent: IconButton {
            objectName: "message.more"
            size: 28
            focusPolicy: Qt.NoFocus
            icon.name: "overflow-menu"
            text: qsTr("What can be done with it")
            key: "Return"
            onClicked: threadItem.openMenu()
        }
    }
    Loader {
        id: menu
        active: false
        sourceComponent: MessageMenu {
            messageId: threadItem.id
            inbox: threadItem.inbox
        }
    }
}
