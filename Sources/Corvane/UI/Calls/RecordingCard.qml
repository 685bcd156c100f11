import QtQuick
import Corvane.Calls
import Corvane.Controls

/// Starts a recording, and shows the one that runs: its level, its time, and what can be done with it.
Column {
    id: card

    required property RecordingView recording

    spacing: Theme.small

    Row {
        width: parent.width
        visible: !card.recording.recording
        spacing: Theme.small
        Button {
            objectName: "calls.record"
            kind: "primary"
            icon.name: "microphone"
            text: qsTr("Record a call")
            hint: Commands.keysOf("recordCall")
            onClicked: card.recording.start()
        }
        MenuButton {
            id: source
            objectName: "calls.source"
            width: Math.min(implicitWidth, parent.width - x)
            anchors.verticalCenter: parent.verticalCenter
            icon.name: "audio"
            text: ""
            Accessible.name: card.recording.sourceText
            hint: card.recording.sourceText
            onPressed: card.recording.findSources()
            Instantiator {
                model: card.recording.sources
                delegate: MenuItem {
                    required property choice modelData
                    text: modelData.label
                    checkable: true
                    checked: card.recording.source === modelData.id
                    onTriggered: card.recording.source = modelData.id
                }
                onObjectAdded: (index, object) => source.list.insertItem(index, object as MenuItem)
                onObjectRemoved: (index, object) => source.list.removeItem(object as MenuItem)
            }
        }
    }
    Label {
        width: parent.width
        visible: !card.recording.recording && text !== ""
        wrapMode: Text.Wrap
        text: card.recording.errorText
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Card {
        objectName: "calls.running"
        width: parent.width
        padding: Theme.medium
        visible: card.recording.recording
        Row {
            width: parent.width
            spacing: Theme.small
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 10
                height: 10
                radius: 5
                color: Theme.bad
            }
            Label {
                width: parent.width - time.width - 10 - Theme.small * 2
                text: card.recording.title
                font.weight: Theme.strong
            }
            Label {
                id: time
                text: card.recording.elapsedText
            }
        }
        Rectangle {
            width: parent.width
            height: 4
            radius: 2
            color: Theme.raised
            Accessible.ignored: true
            Rectangle {
                width: parent.width * Math.min(1, Math.sqrt(card.recording.level))
                height: parent.height
                radius: 2
                color: Theme.good
                Behavior on width { NumberAnimation { duration: Theme.quick } }
            }
        }
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            text: card.recording.warningText || card.recording.statusText
            color: card.recording.warningText ? Theme.warn : Theme.soft
            font.pixelSize: Theme.meta
        }
        Row {
            spacing: Theme.tight
            Button {
                objectName: "calls.stop"
                kind: "danger"
                text: card.recording.stopLabel
                hint: Commands.keysOf("recordCall")
                onClicked: card.recording.stop()
            }
            Button {
                objectName: "calls.mark"
                text: card.recording.marksText || qsTr("Mark")
                Accessible.name: card.recording.markLabel
                hint: Commands.keysOf("markCall")
                onClicked: card.recording.mark()
            }
            Button {
                objectName: "calls.discard"
                kind: "quiet"
                text: qsTr("Discard…")
                onClicked: discard.open()
            }
        }
    }
    Sheet {
        id: discard
        objectName: "calls.discardSheet"
        title: qsTr("Discard this recording?")
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            text: qsTr("Its sound is deleted, and no transcript is made.")
            color: Theme.soft
        }
        buttons: [
            Button {
                kind: "quiet"
                focus: true
                text: qsTr("Keep recording")
                onClicked: discard.close()
            },
            Button {
                objectName: "calls.discardNow"
                kind: "danger"
                text: qsTr("Discard")
                onClicked: {
                    discard.close();
                    card.recording.discard();
                }
            }
        ]
    }
}
