import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// A fact about a person: its name and its value. Pressing it copies the value.
T.AbstractButton {
    id: line

    required property paneRow entry
    property bool copied: false

    text: entry.text

    width: parent?.width ?? 0
    height: 28
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: entry.label + ": " + text
    Accessible.description: qsTr("Copy")
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: {
        WindowTools.copy(text);
        copied = true;
    }
    onHoveredChanged: copied = false
    onActiveFocusChanged: copied = false

    contentItem: Item {
        Label {
            id: name
            anchors.verticalCenter: parent.verticalCenter
            width: 64
            text: line.entry.label
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        ChannelMark {
            id: mark
            anchors.left: name.right
            anchors.verticalCenter: parent.verticalCenter
            visible: line.entry.channel !== ""
            width: visible ? 14 : 0
            channel: line.entry.channel
        }
        Label {
            anchors.left: mark.right
            anchors.leftMargin: mark.visible ? 6 : 0
            anchors.right: sign.left
            anchors.rightMargin: Theme.tight
            anchors.verticalCenter: parent.verticalCenter
            text: line.text
            elide: Text.ElideMiddle
        }
        Icon {
            id: sign
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            opacity: line.hovered || line.visualFocus || line.copied ? 1 : 0
            name: line.copied ? "dialog-ok" : "edit-copy"
            size: 14
            color: line.copied ? Theme.good : Theme.faint
        }
    }
    background: Rectangle {
        anchors.fill: parent
        anchors.leftMargin: -Theme.small
        anchors.rightMargin: -Theme.small
        radius: Theme.controlRadius
        color: line.hovered ? Theme.raised : Theme.none
        FocusRing { control: line; anchors.margins: -1; radius: Theme.controlRadius + 1 }
    }
}
