import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Shell

/// Every key, by where it works, and the pages of the help.
Sheet {
    id: sheet

    required property AppShell shell
    property int topic: -1 ///< the page of the help; -1: the keys

    objectName: "shortcutsSheet"
    title: topic < 0 ? qsTr("Keyboard shortcuts") : shell.help[topic].title
    width: 960 // three columns stand whole in the smallest window

    Row {
        visible: sheet.shell.help.length > 0
        spacing: Theme.small
        Chip {
            objectName: "help.keys"
            text: qsTr("Keys")
            checkable: false
            checked: sheet.topic < 0
            onClicked: sheet.topic = -1
        }
        Repeater {
            model: sheet.shell.help.length
            Chip {
                required property int index
                objectName: "help." + index
                text: sheet.shell.help[index].title
                checkable: false
                checked: sheet.topic === index
                onClicked: sheet.topic = index
            }
        }
    }
    Flickable {
        width: parent.width
        height: Math.min(contentHeight, sheet.parent ? sheet.parent.height - 220 : contentHeight)
        contentHeight: sheet.topic < 0 ? columns.implicitHeight : page.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: ScrollBar {}

        Row {
            id: columns
            width: parent.width
            visible: sheet.topic < 0
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
        Label {
            id: page
            objectName: "help.text"
            width: Math.min(parent.width, 720)
            visible: sheet.topic >= 0
            wrapMode: Text.Wrap
            lineHeight: 1.3
            textFormat: Text.MarkdownText
            text: sheet.topic < 0 ? "" : sheet.shell.help[sheet.topic].text
        }
    }
    buttons: Button {
        focus: true
        text: qsTr("Close")
        onClicked: sheet.close()
    }
}
