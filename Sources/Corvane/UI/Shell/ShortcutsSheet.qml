import QtQuick
import Corvane

/// Every key, by where it works.
Sheet {
    id: sheet

    objectName: "shortcutsSheet"
    title: qsTr("Keyboard shortcuts")
    width: 800

    Row {
        width: parent.width
        spacing: Theme.huge

        KeyColumn {
            width: (parent.width - parent.spacing) / 2
            sections: [Keymap.everywhere, Keymap.gate]
        }
        KeyColumn {
            width: (parent.width - parent.spacing) / 2
            sections: [Keymap.list, Keymap.thread, Keymap.message]
        }
    }
    buttons: Button {
        focus: true
        text: qsTr("Close")
        onClicked: sheet.close()
    }
}
