import QtQuick
import QtQuick.Layouts
import Corvane.Controls

/// The message of a form: progress, a question, or an error.
RowLayout {
    id: line

    required property Form form
    property string name ///< of the sheet

    width: parent ? parent.width : 0
    visible: form.message !== ""
    spacing: Theme.small

    Icon {
        id: mark
        Layout.alignment: Qt.AlignTop
        name: line.form.busy ? "view-refresh" : "dialog-warning"
        color: words.color
        RotationAnimation on rotation {
            running: line.form.busy && Theme.pane > 0
            from: 0
            to: 360
            duration: 1600
            loops: Animation.Infinite
            onStopped: mark.rotation = 0
        }
    }
    Label {
        id: words
        objectName: line.name + ".message"
        Layout.fillWidth: true
        wrapMode: Text.Wrap
        text: line.form.message
        color: line.form.messageKind === "bad" ? Theme.bad : line.form.messageKind === "warn" ? Theme.warn : Theme.soft
        onTextChanged: if (words.text !== "") WindowTools.announce(words)
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
