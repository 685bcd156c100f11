import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Settings

/// Names the one conversation from which approvals can be given.
Card {
    id: card

    required property ControlChatSettings chat ///< the view model

    SettingRow {
        label: card.chat.title
        hint: card.chat.stateText
        Button {
            objectName: "controlChat.turnOff"
            visible: card.chat.chosen
            text: qsTr("Turn off")
            onClicked: card.chat.turnOff()
        }
    }
    Banner {
        width: parent.width
        tone: "warn"
        text: card.chat.warning
    }
    SearchField {
        id: search
        objectName: "controlChat.search"
        width: parent.width
        placeholderText: card.chat.searchText
        text: card.chat.query
        onTextEdited: card.chat.query = text
        onCleared: card.chat.query = ""
        onLeave: if (rows.count) rows.forceActiveFocus(Qt.TabFocusReason)
    }
    ListView {
        id: rows
        objectName: "controlChat.list"
        width: parent.width
        height: Math.min(contentHeight, 44 * 6.5) // half a row tells that there are more
        visible: count > 0
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: card.chat.chats
        activeFocusOnTab: true
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: card.chat.title
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onReturnPressed: (currentItem as T.AbstractButton)?.clicked()
        Keys.onSpacePressed: (currentItem as T.AbstractButton)?.clicked()

        KeyboardFocus { id: keyboard; target: rows }

        delegate: T.AbstractButton {
            id: row

            required property int index
            required property controlChatRow chat

            objectName: "controlChat:" + chat.id
            width: ListView.view.width
            implicitHeight: 44
            hoverEnabled: true
            focusPolicy: Qt.NoFocus
            Accessible.role: Accessible.RadioButton
            Accessible.name: chat.sentence
            Accessible.checked: chat.chosen
            onClicked: {
                rows.currentIndex = row.index;
                card.chat.choose(row.chat.id);
            }

            background: Rectangle {
                radius: Theme.controlRadius
                color: row.chat.chosen ? Theme.tint : row.hovered ? Theme.raised : Theme.none
                border.width: keyboard.shown && row.ListView.isCurrentItem ? 2 : 0
                border.color: Theme.accent
            }
            contentItem: Item {
                ChannelMark {
                    id: mark
                    x: Theme.medium
                    anchors.verticalCenter: parent.verticalCenter
                    channel: row.chat.channel
                    size: 16
                }
                Label {
                    anchors.left: mark.right
                    anchors.leftMargin: Theme.medium
                    anchors.right: where.left
                    anchors.rightMargin: Theme.medium
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.chat.title
                    color: row.chat.chosen ? Theme.accent : Theme.text
                }
                Label {
                    id: where
                    width: Math.min(implicitWidth, parent.width / 2)
                    anchors.right: tick.left
                    anchors.rightMargin: Theme.small
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.chat.detail
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                }
                Icon {
                    id: tick
                    anchors.right: parent.right
                    anchors.rightMargin: Theme.medium
                    anchors.verticalCenter: parent.verticalCenter
                    name: row.chat.chosen ? "dialog-ok" : ""
                    color: Theme.accent
                }
            }
        }
    }
    Label {
        width: parent.width
        visible: rows.count === 0
        wrapMode: Text.Wrap
        text: card.chat.emptyText
        color: Theme.soft
    }
    Label {
        width: parent.width
        visible: text !== ""
        text: card.chat.savedText
        font.pixelSize: Theme.meta
        color: card.chat.failed ? Theme.bad : Theme.good
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
