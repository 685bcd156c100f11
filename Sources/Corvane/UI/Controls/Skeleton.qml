import Corvane.Controls
import QtQuick

/// Placeholder rows while the real ones are loading; shown only after 150 ms, so that quick loads do not
/// flicker.
Column {
    id: skeleton

    property bool active: false
    property int rows: 8
    property bool late: false

    visible: active && late
    onActiveChanged: if (!active) late = false
    Accessible.ignored: true

    // The only timer in QML, since it is not logic: an animation that waits.
    SequentialAnimation {
        running: skeleton.active && !skeleton.late
        PauseAnimation { duration: 150 }
        ScriptAction { script: skeleton.late = true }
    }

    Repeater {
        model: skeleton.rows
        Item {
            id: row
            required property int index
            width: skeleton.width
            height: Theme.row
            opacity: 1 - index / (skeleton.rows + 1)

            Rectangle { x: Theme.large; y: 12; width: 40; height: 40; radius: 20; color: Theme.raised }
            Rectangle { x: 68; y: 16; width: 90 + row.index * 37 % 60; height: 12; radius: 6; color: Theme.raised }
            Rectangle { x: 68; y: 38; width: parent.width - 120 - row.index * 53 % 70; height: 10; radius: 5; color: Theme.raised }
        }
    }
}
