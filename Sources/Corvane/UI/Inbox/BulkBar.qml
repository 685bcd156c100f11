import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What can be done with all picked rows at once.
Rectangle {
    id: bar

    required property ListActions actions

    implicitHeight: actions.bulk.active ? Theme.bar : 0
    visible: height > 0
    clip: true
    color: Theme.surface
    Behavior on implicitHeight { NumberAnimation { duration: Theme.pane; easing.type: Easing.OutCubic } }

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Label {
        x: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        text: bar.actions.bulk.text
        font.weight: Theme.strong
    }
    Row {
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter

        IconButton {
            objectName: "bulk.read"
            icon.name: "mail-mark-read"
            text: qsTr("Mark as read")
            onClicked: bar.actions.markCheckedRead()
        }
        IconButton {
            objectName: "bulk.mute"
            icon.name: "notifications-disabled"
            text: qsTr("Mute or unmute")
            key: Commands.keysOf("mute")
            onClicked: bar.actions.muteChecked()
        }
        IconButton {
            objectName: "bulk.archive"
            icon.name: bar.actions.unarchives ? "mail-unarchive" : "mail-archive"
            text: bar.actions.archiveLabel
            key: Commands.keysOf("archive")
            onClicked: bar.actions.archiveChecked()
        }
        IconButton {
            objectName: "bulk.clear"
            icon.name: "window-close"
            text: qsTr("Pick none")
            key: Commands.keysOf("back")
            onClicked: bar.actions.bulk.clear()
        }
    }
}
