import QtQuick
import Corvane.Controls
import Corvane.Shell

/// The keys of some sections of the keymap, one below the other.
Column {
    id: column

    property var sections: []

    spacing: Theme.large

    Repeater {
        model: column.sections
        Column {
            id: section
            required property string modelData
            width: column.width

            SectionHeader {
                text: section.modelData
                bottomPadding: Theme.tight
            }
            Repeater {
                model: Keymap.entries.filter(entry => entry.section === section.modelData)
                Item {
                    id: line
                    required property var modelData
                    width: section.width
                    height: 28
                    Accessible.role: Accessible.StaticText
                    Accessible.name: modelData.label + ": " + modelData.keys

                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        text: line.modelData.label
                        Accessible.ignored: true
                    }
                    Keycaps {
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        keys: line.modelData.keys
                    }
                }
            }
        }
    }
}
