import QtQuick
import Corvane.Controls

/// The heading of a place: its title, a line about it, and on the right what can be created.
Item {
    id: head

    property string title
    property string detail
    default property alias actions: row.data

    implicitHeight: Math.max(words.height, Theme.control)

    Column {
        id: words
        width: row.x - Theme.large
        spacing: 2
        Label {
            width: parent.width
            text: head.title
            font.pixelSize: Theme.screen
            font.weight: Theme.strong
            Accessible.role: Accessible.Heading
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: head.detail
            color: Theme.soft
        }
    }
    Row {
        id: row
        anchors.right: parent.right
        spacing: Theme.small
    }
}
