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
            model: Commands.columns
            KeyColumn {
                required property int index
                width: (columns.width - columns.spacing * (Commands.columns - 1)) / Commands.columns
                places: Commands.placesIn(index)
            }
        }
    }
    buttons: Button {
        focus: true
        text: qsTr("Close")
        onClicked: sheet.close()
    }
}
