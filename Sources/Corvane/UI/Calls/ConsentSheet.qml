import QtQuick
import Corvane.Calls
import Corvane.Controls

/// What the user reads once, before the first recording.
Sheet {
    id: sheet

    required property RecordingView recording

    objectName: "recordingConsent"
    title: recording.consentTitle

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        lineHeight: 1.3
        text: sheet.recording.consentText
        color: Theme.soft
    }
    buttons: [
        Button {
            objectName: "recordingConsent.cancel"
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "recordingConsent.accept"
            kind: "primary"
            focus: true
            text: qsTr("Start recording")
            onClicked: {
                sheet.close();
                sheet.recording.acceptConsent();
            }
        }
    ]
}
