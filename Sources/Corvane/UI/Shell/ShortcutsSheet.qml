import QtQuick
import Corvane

/// Every key, by where it works.
Sheet {
    id: sheet

    objectName: "shortcutsSheet"
    title: qsTr("Keyboard shortcuts")
    width: 520

    Repeater {
        model: [...new Set(Keymap.entries.map(entry => entry.section))]
        Column {
            id: section
            required property string modelData
            width: parent.width

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
                    height: 26
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
    buttons: Button {
        focus: true
        text: qsTr("Close")
        onClicked: sheet.close()
    }
}
