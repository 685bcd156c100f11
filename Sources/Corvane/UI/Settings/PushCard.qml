import QtQuick
import Corvane.Controls
import Corvane.Settings

/// The push of local chats: what waits, its progress, its result, and what is never pushed.
Card {
    id: card

    required property PushSettings push
    required property color stateColour
    property keptLine noLine

    SectionHeader { text: qsTr("Local chats to the web") }
    SettingRow {
        visible: !card.push.running
        label: card.push.dueText
        Row {
            spacing: Theme.small
            Button {
                objectName: "push.review"
                visible: card.push.canReview
                kind: "quiet"
                text: qsTr("Review…")
                onClicked: card.push.review()
            }
            Button {
                objectName: "push.push"
                kind: "primary"
                enabled: card.push.canPush
                text: card.push.pushLabel
                onClicked: card.push.push()
            }
        }
    }
    Label {
        objectName: "push.state"
        width: parent.width
        visible: !card.push.running
        wrapMode: Text.Wrap
        text: card.push.stateText
        color: card.stateColour
    }
    ProgressRow {
        name: "push"
        visible: card.push.running
        progress: card.push.progress
        text: card.push.progressText
        onCancelled: card.push.cancel()
    }
    Banner {
        objectName: "push.leftOut"
        width: parent.width
        visible: text !== "" && !card.push.running
        text: card.push.leftOutText
        action: card.push.canReview ? qsTr("Push the rest") : ""
        onActed: card.push.pushTheRest()
    }
    Repeater {
        model: card.push.kept.length
        SettingRow {
            id: row
            required property int index
            readonly property keptLine line: card.push.kept[index] ?? card.noLine
            width: parent.width
            label: line.title
            hint: line.detail
            Row {
                spacing: Theme.small
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Kept local")
                    color: Theme.soft
                }
                Button {
                    objectName: "push.release." + row.index
                    kind: "quiet"
                    text: qsTr("Allow")
                    Accessible.name: qsTr("Allow %1 to be pushed").arg(row.line.title)
                    onClicked: card.push.release(row.index)
                }
            }
        }
    }
    Toggle {
        objectName: "push.batch"
        width: parent.width
        text: qsTr("Send the messages of a chat in one request")
        checked: card.push.batch
        onToggled: card.push.batch = checked
    }
    SettingRow {
        visible: card.push.canStartOver
        label: qsTr("Start over")
        hint: qsTr("For a service that lost its data: the next push sends everything again.")
        Button {
            objectName: "push.startOver"
            text: qsTr("Start over")
            onClicked: card.push.startOver()
        }
    }
}
