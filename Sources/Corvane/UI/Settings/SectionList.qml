import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Settings

/// The sections of the settings, one above the other.
FocusScope {
    id: pane

    property list<settingsSection> sections
    property string chosen

    signal picked(string id)

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Settings sections")

    function step(by: int) {
        let index = 0;
        while (sections[index].id !== chosen)
            ++index;
        index += by;
        if (index >= 0 && index < sections.length) {
            picked(sections[index].id);
            entries.itemAt(index).forceActiveFocus(Qt.TabFocusReason);
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Column {
        x: Theme.medium
        y: Theme.large
        width: parent.width - Theme.medium * 2
        spacing: 2

        Label {
            leftPadding: Theme.small
            bottomPadding: Theme.medium
            text: qsTr("Settings")
            font.pixelSize: Theme.title
            font.weight: Theme.strong
            Accessible.role: Accessible.Heading
        }
        Repeater {
            id: entries
            model: pane.sections
            T.AbstractButton {
                id: entry
                required property settingsSection modelData
                readonly property bool selected: modelData.id === pane.chosen

                objectName: "settings." + modelData.id
                width: parent.width
                implicitHeight: 34
                hoverEnabled: true
                focus: selected
                focusPolicy: Qt.TabFocus
                text: modelData.label
                Accessible.role: Accessible.PageTab
                Accessible.name: text
                Accessible.selected: selected
                onClicked: pane.picked(modelData.id)
                Keys.onReturnPressed: clicked()
                Keys.onDownPressed: pane.step(1)
                Keys.onUpPressed: pane.step(-1)

                contentItem: Item {
                    Icon {
                        id: sign
                        x: Theme.small
                        anchors.verticalCenter: parent.verticalCenter
                        name: entry.modelData.icon
                        color: entry.selected ? Theme.accent : Theme.soft
                    }
                    Label {
                        anchors.left: sign.right
                        anchors.leftMargin: Theme.medium
                        anchors.verticalCenter: parent.verticalCenter
                        text: entry.text
                        font.weight: entry.selected ? Theme.strong : Theme.regular
                        color: entry.selected ? Theme.accent : Theme.text
                    }
                }
                background: Rectangle {
                    radius: Theme.controlRadius
                    color: entry.selected ? Theme.tint : entry.hovered ? Theme.raised : Theme.none
                    FocusRing { control: entry; anchors.margins: -2; radius: Theme.controlRadius + 2 }
                }
            }
        }
    }
}
