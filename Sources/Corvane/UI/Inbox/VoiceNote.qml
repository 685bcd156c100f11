import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A voice note that is recorded, or waits to be sent.
Item {
    id: note

    required property Composer composer
    readonly property VoiceRecorder voice: composer.voice.note

    implicitHeight: Theme.control

    Rectangle {
        id: light
        anchors.verticalCenter: parent.verticalCenter
        width: 10
        height: 10
        radius: 5
        color: note.voice.recording ? Theme.bad : Theme.faint
    }
    Label {
        id: clock
        anchors.left: light.right
        anchors.leftMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        text: note.voice.elapsedText
        Accessible.name: qsTr("Recorded %1").arg(text)
    }
    Label {
        id: word
        anchors.left: clock.right
        anchors.leftMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        text: note.voice.state === "starting" ? qsTr("Asking for the microphone…")
            : note.voice.recording ? qsTr("Recording") : qsTr("Voice note")
        color: Theme.soft
    }
    Rectangle {
        anchors.left: word.right
        anchors.leftMargin: Theme.medium
        anchors.right: actions.left
        anchors.rightMargin: Theme.medium
        anchors.verticalCenter: parent.verticalCenter
        height: 6
        radius: 3
        visible: note.voice.recording
        color: Theme.raised
        Rectangle {
            width: parent.width * Math.sqrt(note.voice.level)
            height: parent.height
            radius: 3
            color: Theme.accent
            Behavior on width { NumberAnimation { duration: Theme.quick } }
        }
    }
    Row {
        id: actions
        anchors.right: parent.right
        spacing: Theme.small

        Button {
            objectName: "composer.discardVoice"
            kind: "quiet"
            text: qsTr("Discard")
            onClicked: note.voice.cancel()
        }
        Button {
            objectName: "composer.sendVoice"
            kind: "primary"
            enabled: note.voice.state !== "starting"
            icon.name: "mail-send"
            text: qsTr("Send voice note")
            onClicked: note.composer.sendVoice()
        }
    }
}
