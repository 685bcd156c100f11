import QtQuick
import Corvane.Controls
import Corvane.Shell

/// Every key, by where it works.
Sheet {
    id: sheet

    objectName: "shortcutsSheet"
    title: qsTr("Keyboard shortcuts")
    width: 960 // three columns stand whole in the smallest window

    Row {
        id: columns
        width: parent.width
        spacing: Theme.huge

        Repeater {
            model: [[Keymap.everywhere, Keymap.list], [Keymap.gate, Keymap.terminal], [Keymap.thread, Keymap.message]]
            KeyColumn {
                required property var modelData
                width: (columns.width - columns.spacing * 2) / 3
                sections: modelData
            }
        }
    }
    buttons: Button {
        focus: true
        text: qsTr("Close")
        onClicked: sheet.close()
    }
}
