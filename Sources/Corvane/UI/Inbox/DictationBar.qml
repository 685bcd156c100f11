import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// Dictation into the reply: level and time while it listens, and what came of it.
Item {
    id: bar

    required property ComposerDictation dictation
    readonly property bool listening: dictation.state === "recording"

    signal modelWanted

    implicitHeight: Theme.control

    Rectangle {
        id: light
        anchors.verticalCenter: parent.verticalCenter
        width: 10
        height: 10
        radius: 5
        color: bar.listening ? Theme.bad : bar.dictation.active ? Theme.warn : Theme.faint
    }
    Label {
        id: word
        objectName: "dictation.state"
        anchors.left: light.right
        anchors.leftMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, actions.x - x - Theme.small)
        elide: Text.ElideRight
        text: bar.listening ? bar.dictation.stateText + "  " + bar.dictation.elapsedText : bar.dictation.stateText
        color: bar.dictation.state === "error" ? Theme.bad : Theme.soft
        Accessible.role: Accessible.AlertMessage
        Accessible.name: bar.dictation.stateText
    }
    Rectangle {
        anchors.left: word.right
        anchors.leftMargin: Theme.medium
        anchors.right: actions.left
        anchors.rightMargin: Theme.medium
        anchors.verticalCenter: parent.verticalCenter
        height: 6
        radius: 3
        visible: bar.listening
        color: Theme.raised
        Rectangle {
            width: parent.width * Math.sqrt(bar.dictation.level)
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
            objectName: "dictation.model"
            visible: bar.dictation.state === "missing"
            text: qsTr("Add a speech model")
            onClicked: bar.modelWanted()
        }
        Button {
            objectName: "dictation.cancel"
            kind: "quiet"
            text: bar.dictation.active ? qsTr("Cancel") : qsTr("Dismiss")
            hint: bar.dictation.active ? qsTr("Esc") : ""
            onClicked: bar.dictation.cancel()
        }
        Button {
            objectName: "dictation.finish"
            visible: bar.listening
            kind: "primary"
            text: qsTr("Insert")
            onClicked: bar.dictation.finish()
        }
    }
}
