import Corvane.Controls
import QtQuick

/// Keys as labelled on the keyboard, with plain words between them.
Row {
    id: row

    property string keys

    spacing: Theme.tight
    Accessible.ignored: true

    Repeater {
        model: row.keys.split(" ")
        Rectangle {
            id: cap
            required property string modelData
            readonly property bool plain: modelData === "or" || modelData === "…"
            implicitWidth: Math.max(plain ? 0 : 22, word.implicitWidth + (plain ? 4 : 12))
            implicitHeight: 20
            radius: 4
            color: plain ? Theme.none : Theme.raised
            border.width: plain ? 0 : 1
            border.color: Theme.line
            Label {
                id: word
                anchors.centerIn: parent
                text: cap.modelData
                font.pixelSize: Theme.meta
                color: cap.plain ? Theme.faint : Theme.soft
            }
        }
    }
}
