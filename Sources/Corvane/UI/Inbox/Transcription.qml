import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// Below a voice note: the button to transcribe it, the progress, the text, and reading it aloud.
Column {
    id: transcription

    required property threadRow message
    required property OpenPerson person
    required property int maximumWidth

    readonly property VoiceTranscripts transcripts: person.transcripts
    readonly property string step: message.transcribeState

    spacing: 2

    Label {
        objectName: "thread.transcribeState"
        visible: text !== ""
        width: Math.min(implicitWidth, transcription.maximumWidth)
        wrapMode: Text.Wrap
        text: transcription.message.transcribeText
        font.pixelSize: Theme.meta
        color: transcription.step === "failed" ? Theme.bad : Theme.soft
    }
    Row {
        x: -Theme.small // the buttons' own padding
        spacing: Theme.tight
        Button {
            objectName: "thread.transcribe"
            visible: ["offer", "failed"].includes(transcription.step)
            implicitHeight: 28
            kind: "quiet"
            focusPolicy: Qt.NoFocus
            icon.name: transcription.step === "failed" ? "view-refresh" : "note"
            text: transcription.step === "failed" ? qsTr("Retry transcription") : qsTr("Transcribe")
            onClicked: transcription.transcripts.transcribe(transcription.message.id)
        }
        Button {
            objectName: "thread.cancelTranscription"
            visible: transcription.step === "loading"
            implicitHeight: 28
            kind: "quiet"
            focusPolicy: Qt.NoFocus
            text: qsTr("Cancel")
            onClicked: transcription.transcripts.cancel(transcription.message.id)
        }
        Button {
            objectName: "thread.getModel"
            visible: transcription.step === "missing"
            implicitHeight: 28
            kind: "quiet"
            focusPolicy: Qt.NoFocus
            text: qsTr("Add a speech model")
            onClicked: transcription.person.openVoiceSettings()
        }
        Button {
            objectName: "thread.speak"
            visible: transcription.message.transcript !== ""
            implicitHeight: 28
            kind: "quiet"
            focusPolicy: Qt.NoFocus
            icon.name: "audio"
            text: transcription.transcripts.speakingId === transcription.message.id ? qsTr("Stop reading")
                                                                                   : qsTr("Read transcript aloud")
            onClicked: transcription.transcripts.speak(transcription.message.id)
        }
    }
}
