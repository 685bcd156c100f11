import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A separator: a new day, or the start of the unread messages.
Item {
    id: separator

    property alias text: label.text
    property color ink: Theme.soft

    implicitHeight: 44

    Rectangle {
        anchors.verticalCenter: label.verticalCenter
        x: Theme.wide
        width: label.x - Theme.wide - Theme.medium
        height: 1
        color: Theme.line
    }
    Label {
        id: label
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.tight
        font.pixelSize: Theme.meta
        font.weight: Theme.strong
        color: separator.ink
        Accessible.ignored: true
    }
    Rectangle {
        anchors.verticalCenter: label.verticalCenter
        anchors.right: parent.right
        anchors.rightMargin: Theme.wide
        width: label.x - Theme.wide - Theme.medium
        height: 1
        color: Theme.line
    }
}
