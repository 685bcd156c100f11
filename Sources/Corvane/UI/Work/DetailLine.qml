import QtQuick
import Corvane.Controls
import Corvane.Work

/// An update or an order.
Item {
    id: row

    required property opsLine line

    implicitHeight: column.height + Theme.small
    Accessible.role: Accessible.ListItem
    Accessible.name: line.title + ", " + line.detail

    Column {
        id: column
        width: parent.width
        spacing: 2
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            maximumLineCount: 6
            text: row.line.title
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            text: row.line.status ? row.line.detail + " · " + row.line.status : row.line.detail
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
    }
}
