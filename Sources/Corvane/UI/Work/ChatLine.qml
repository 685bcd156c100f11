import QtQuick
import Corvane.Controls
import Corvane.Work

/// A line of the chat; an answer shows the rows that it names.
Item {
    id: row

    required property workChatLine line

    signal sourceOpened(source: string)

    implicitHeight: bubble.height
    Accessible.role: Accessible.ListItem
    Accessible.name: line.aloud

    Rectangle {
        id: bubble
        anchors.right: row.line.isOskel ? parent.right : undefined
        width: row.line.tone === "system" ? parent.width
            : Math.min(parent.width * 0.78, Math.max(who.implicitWidth, words.implicitWidth) + Theme.medium * 2)
        height: column.height + (row.line.tone === "system" ? Theme.tight : Theme.small) * 2
        radius: Theme.bubbleRadius
        color: row.line.tone === "system" ? Theme.none : row.line.isOskel ? Theme.tint : Theme.surface
        border.width: row.line.isOskel || row.line.tone === "system" ? 0 : 1
        border.color: Theme.line
        Column {
            id: column
            x: row.line.tone === "system" ? 0 : Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - x * 2
            spacing: Theme.tight
            Label {
                id: who
                width: parent.width
                text: row.line.speaker + " · " + row.line.time
                font.pixelSize: Theme.meta
                color: Theme.faint
                Accessible.ignored: true
            }
            Label {
                id: words
                width: parent.width
                text: row.line.body
                wrapMode: Text.Wrap
                elide: Text.ElideNone
                color: row.line.tone === "bad" ? Theme.bad : row.line.tone === "system" ? Theme.soft : Theme.text
                Accessible.ignored: true
            }
            Flow {
                width: parent.width
                spacing: Theme.tight
                visible: row.line.sources.length > 0
                Label {
                    height: 24
                    verticalAlignment: Text.AlignVCenter
                    text: qsTr("Based on")
                    font.pixelSize: Theme.meta
                    color: Theme.soft
                }
                Repeater {
                    model: row.line.sources
                    Chip {
                        required property choice modelData
                        objectName: "chat.source:" + modelData.label
                        text: modelData.label
                        onClicked: row.sourceOpened(modelData.id)
                    }
                }
            }
        }
    }
}
