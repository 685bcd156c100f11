import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A contact who may be the same person, and why.
Rectangle {
    id: card

    required property paneRow entry

    signal merged
    signal dismissed

    width: parent?.width ?? 0
    height: words.height + Theme.small * 2
    radius: Theme.cardRadius
    color: Theme.raised
    Accessible.role: Accessible.Grouping
    Accessible.name: entry.text + " " + entry.detail

    ChannelMark {
        id: mark
        x: Theme.medium
        y: Theme.small + 2
        channel: card.entry.channel
    }
    Column {
        id: words
        anchors.left: mark.right
        anchors.leftMargin: Theme.small
        anchors.right: close.left
        y: Theme.small
        spacing: 1

        Label {
            width: parent.width
            text: card.entry.text
            wrapMode: Text.Wrap
            maximumLineCount: 3
            font.weight: Theme.strong
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            text: card.entry.detail
            font.pixelSize: Theme.meta
            color: Theme.soft
            Accessible.ignored: true
        }
        Item { width: 1; height: Theme.tight }
        Button {
            objectName: "contact.merge"
            implicitHeight: 28
            text: qsTr("Merge")
            Accessible.description: card.entry.text
            onClicked: card.merged()
        }
    }
    IconButton {
        id: close
        objectName: "contact.dismissMerge"
        anchors.right: parent.right
        anchors.rightMargin: Theme.tight
        y: Theme.tight
        size: 24
        iconSize: 14
        icon.name: "window-close"
        text: qsTr("Not the same person")
        onClicked: card.dismissed()
    }
}
