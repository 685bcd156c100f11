import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What was just done, and the way back.
Rectangle {
    id: toast

    required property InboxView inbox

    readonly property bool shown: inbox.undoText !== ""
    property string lastText
    onShownChanged: if (shown) lastText = inbox.undoText

    implicitWidth: row.implicitWidth + Theme.large + Theme.small
    implicitHeight: 44
    visible: opacity > 0
    opacity: shown ? 1 : 0
    radius: Theme.cardRadius
    color: Theme.text
    z: 20
    Accessible.role: Accessible.AlertMessage
    Accessible.name: lastText
    Behavior on opacity { NumberAnimation { duration: Theme.pane; easing.type: Easing.OutCubic } }

    Shadow {}
    Row {
        id: row
        x: Theme.large
        height: parent.height
        spacing: Theme.medium

        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: toast.shown ? toast.inbox.undoText : toast.lastText
            color: Theme.surface
            Accessible.ignored: true
        }
        Button {
            objectName: "inbox.undo"
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 28
            text: qsTr("Undo")
            hint: Commands.keysOf("undo")
            onClicked: toast.inbox.undo()
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            size: 28
            iconSize: 14
            ink: hovered ? Theme.text : Theme.surface
            icon.name: "window-close"
            text: qsTr("Dismiss")
            onClicked: toast.inbox.dismissUndo()
        }
    }
}
