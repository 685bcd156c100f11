import QtQuick
import Corvane.Controls
import Corvane.Panel

/// What dictation does, above every program: its state in words, level and time while it listens. It never takes the
/// keyboard.
Window {
    id: window

    required property DictationAnywhere dictation
    readonly property DictationPanel panel: dictation.panel
    readonly property bool listening: panel.mode === "listening"
    readonly property bool busy: panel.mode === "busy"

    title: qsTr("Dictation")
    width: Math.max(320, Math.min(480, Math.ceil(words.implicitWidth) + side.width + Theme.large * 2 + 10 + Theme.small * 2))
    height: Math.max(64, words.implicitHeight + Theme.large * 2)
    color: Theme.surface
    flags: Qt.ToolTip | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.WindowDoesNotAcceptFocus

    Rectangle {
        id: light
        x: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        width: 10
        height: 10
        radius: 5
        color: window.listening ? Theme.bad : window.busy ? Theme.accent
            : window.panel.mode === "done" ? Theme.good : Theme.warn
    }
    Label {
        id: words
        objectName: "dictationPanel.text"
        anchors.left: light.right
        anchors.leftMargin: Theme.small
        anchors.right: side.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        wrapMode: Text.Wrap
        text: window.panel.text
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
        onTextChanged: if (window.visible) WindowTools.announce(words)
    }
    Row {
        id: side
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.tight
        Label {
            objectName: "dictationPanel.time"
            visible: window.listening
            anchors.verticalCenter: parent.verticalCenter
            text: window.panel.elapsedText
            color: Theme.soft
        }
        IconButton {
            objectName: "dictationPanel.cancel"
            visible: window.listening || window.busy
            icon.name: "window-close"
            text: qsTr("Cancel")
            onClicked: window.dictation.cancel()
        }
    }
    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 4
        visible: window.listening || window.busy
        color: Theme.raised
        Rectangle {
            objectName: "dictationPanel.level"
            width: parent.width * (window.listening ? Math.sqrt(window.panel.level) : window.panel.level)
            height: parent.height
            color: window.listening ? Theme.bad : Theme.accent
            Behavior on width { NumberAnimation { duration: Theme.quick } }
        }
    }
    Rectangle {
        anchors.fill: parent
        z: 100
        color: Theme.none
        border.width: 1
        border.color: Theme.faint
    }
}
