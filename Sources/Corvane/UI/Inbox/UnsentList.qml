import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// Messages that the user sent and that did not go out, as they would look in the thread.
Column {
    id: list

    required property UnsentMessages unsent

    spacing: Theme.small
    visible: lines.count > 0
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Not sent")

    Repeater {
        id: lines
        model: list.unsent.rows
        Rectangle {
            id: bubble

            required property unsentMessage message

            objectName: "unsent:" + message.id
            anchors.right: parent.right
            width: Math.min(parent.width * 0.68, Math.max(320, words.implicitWidth + Theme.medium * 2))
            height: parts.implicitHeight + Theme.medium * 2
            radius: Theme.bubbleRadius
            color: Theme.tint
            border.width: 1
            border.color: Theme.bad
            Accessible.role: Accessible.ListItem
            Accessible.name: bubble.message.reason + ": " + bubble.message.body

            Column {
                id: parts
                x: Theme.medium
                y: Theme.medium
                width: parent.width - Theme.medium * 2
                spacing: Theme.small

                Label {
                    id: words
                    width: parent.width
                    visible: text !== ""
                    text: bubble.message.body
                    wrapMode: Text.Wrap
                    maximumLineCount: 6
                    lineHeight: 1.2
                    Accessible.ignored: true
                }
                Label {
                    width: parent.width
                    visible: text !== ""
                    text: bubble.message.files
                    color: Theme.soft
                    Accessible.ignored: true
                }
                Label {
                    width: parent.width
                    text: bubble.message.reason
                    wrapMode: Text.Wrap
                    maximumLineCount: 3
                    font.pixelSize: Theme.meta
                    color: Theme.bad
                    Accessible.ignored: true
                }
                Row {
                    spacing: Theme.small
                    Button {
                        objectName: "unsent.retry"
                        text: qsTr("Retry")
                        Accessible.description: bubble.message.body
                        onClicked: list.unsent.retry(bubble.message.id)
                    }
                    Button {
                        objectName: "unsent.discard"
                        kind: "quiet"
                        text: qsTr("Discard")
                        Accessible.description: bubble.message.body
                        onClicked: list.unsent.discard(bubble.message.id)
                    }
                }
            }
        }
    }
}
