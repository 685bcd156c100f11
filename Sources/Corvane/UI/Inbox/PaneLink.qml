import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// A small text button for an action on its line. `subject` names the line for the screen reader.
T.AbstractButton {
    id: link

    property string subject

    implicitWidth: implicitContentWidth + Theme.small * 2
    implicitHeight: 24
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: subject ? text + ": " + subject : text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Label {
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        text: link.text
        font.pixelSize: Theme.meta
        color: link.hovered || link.visualFocus ? Theme.text : Theme.soft
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: link.down ? Theme.line : link.hovered ? Theme.raised : Theme.none
        FocusRing { control: link; anchors.margins: -2; radius: Theme.controlRadius + 2 }
    }
}
