import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls

/// A running recording: a red dot, its length, and Stop. Visible on every screen.
Rectangle {
    id: pill

    required property RecordingView recording

    signal opened

    implicitWidth: line.implicitWidth + Theme.small
    implicitHeight: Theme.control
    radius: height / 2
    visible: recording.recording
    color: Theme.raised
    border.width: 1
    border.color: Theme.line
    Accessible.role: Accessible.Grouping
    Accessible.name: recording.aloudText

    Row {
        id: line
        height: parent.height
        spacing: Theme.tight
        T.AbstractButton {
            id: face
            objectName: "recording.open"
            implicitWidth: implicitContentWidth + leftPadding + rightPadding
            leftPadding: Theme.medium
            rightPadding: Theme.small
            height: parent.height
            hoverEnabled: true
            focusPolicy: Qt.TabFocus
            text: pill.recording.aloudText
            Accessible.name: text
            onClicked: pill.opened()
            Keys.onReturnPressed: clicked()
            background: Rectangle {
                radius: height / 2
                color: face.hovered ? Theme.line : Theme.none
                FocusRing { control: face }
            }
            contentItem: Row {
                spacing: Theme.small
                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 10
                    height: 10
                    radius: 5
                    color: Theme.bad
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: pill.recording.elapsedText
                    Accessible.ignored: true
                }
            }
            Tooltip { text: pill.recording.statusText; shown: face.hovered }
        }
        Button {
            objectName: "recording.stop"
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 24
            kind: "danger"
            text: pill.recording.stopLabel
            onClicked: pill.recording.stop()
        }
    }
}
