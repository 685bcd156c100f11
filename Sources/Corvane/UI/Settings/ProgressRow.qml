import QtQuick
import Corvane.Controls

/// The progress of a long task as a bar and in words, and the button that cancels it.
Column {
    id: row

    required property string name ///< of the parts: "{name}.progress", "{name}.progressText", "{name}.cancel"
    required property real progress ///< 0 to 1
    required property string text

    signal cancelled

    width: parent.width
    spacing: Theme.small

    Rectangle {
        width: parent.width
        height: 6
        radius: 3
        color: Theme.raised
        Accessible.role: Accessible.ProgressBar
        Accessible.name: row.text
        Rectangle {
            objectName: row.name + ".progress"
            width: parent.width * Math.max(0, Math.min(1, row.progress))
            height: parent.height
            radius: 3
            color: Theme.accent
        }
    }
    Row {
        width: parent.width
        spacing: Theme.small
        Label {
            objectName: row.name + ".progressText"
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - stop.width - parent.spacing
            wrapMode: Text.Wrap
            text: row.text
            color: Theme.soft
        }
        Button {
            id: stop
            objectName: row.name + ".cancel"
            text: qsTr("Cancel")
            onClicked: row.cancelled()
        }
    }
}
