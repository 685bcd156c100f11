import QtQuick
import Corvane.Controls
import Corvane.Shell

/// The keys of some places, one below the other.
Column {
    id: column

    property list<string> places

    spacing: Theme.large

    Repeater {
        model: column.places
        Column {
            id: section
            required property string modelData
            width: column.width

            SectionHeader {
                text: section.modelData
                bottomPadding: Theme.tight
            }
            Repeater {
                model: Commands.commandsAt(section.modelData)
                Item {
                    id: line
                    required property commandRow modelData
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
