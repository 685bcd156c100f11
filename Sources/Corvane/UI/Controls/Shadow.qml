import Corvane.Controls
import QtQuick

/// A soft shadow under its parent, made of plain rectangles so that every renderer draws it.
Item {
    id: shadow

    property real radius: Theme.cardRadius

    anchors.fill: parent
    z: -1

    Repeater {
        model: 8
        Rectangle {
            required property int index
            anchors.fill: parent
            anchors.margins: -index * 2
            anchors.topMargin: -index * 2 + 4
            anchors.bottomMargin: -index * 2 - 4
            radius: shadow.radius + index * 2
            color: Theme.shadow
        }
    }
}
