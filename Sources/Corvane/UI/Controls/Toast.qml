import QtQuick
import Corvane.Controls

/// The last action, with a button to undo it. Hidden without a text.
Rectangle {
    id: toast

    property string text
    property string undoName ///< object name of the button
    readonly property bool shown: text !== ""
    property string lastText

    signal undone
    signal dismissed

    onTextChanged: if (text !== "") lastText = text
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
            width: Math.min(implicitWidth, 420)
            text: toast.lastText
            color: Theme.surface
            Accessible.ignored: true
        }
        Button {
            objectName: toast.undoName
            anchors.verticalCenter: parent.verticalCenter
            implicitHeight: 28
            text: qsTr("Undo")
            hint: Commands.keysOf("undo")
            onClicked: toast.undone()
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            size: 28
            iconSize: 14
            ink: hovered ? Theme.text : Theme.surface
            icon.name: "window-close"
            text: qsTr("Dismiss")
            onClicked: toast.dismissed()
        }
    }
}
