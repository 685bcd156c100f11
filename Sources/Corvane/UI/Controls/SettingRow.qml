import QtQuick
import Corvane.Controls

/// A setting: its name and a line of help at the left, the control at the right.
Item {
    id: row

    property string label
    property string hint
    default property alias control: right.data

    width: parent.width
    implicitHeight: Math.max(words.implicitHeight, right.implicitHeight)

    Column {
        id: words
        anchors.left: parent.left
        anchors.right: right.left
        anchors.rightMargin: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        spacing: 3
        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            maximumLineCount: 4
            text: row.label
        }
        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            text: row.hint
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
    }
    Row {
        id: right
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.tight
    }
}
