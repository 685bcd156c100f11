import QtQuick
import Corvane.Controls
import Corvane.Dev

/// The search on a page. The number of matches is shown among the notices.
FocusScope {
    id: bar

    required property BrowserView screen

    signal closed

    function takeFocus() {
        field.forceActiveFocus();
        field.selectAll();
    }

    width: row.implicitWidth + Theme.small * 2
    height: Theme.control + Theme.small * 2
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Find on the page")

    Rectangle {
        anchors.fill: parent
        radius: Theme.cardRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Shadow { radius: Theme.cardRadius }
    }
    Row {
        id: row
        anchors.centerIn: parent
        spacing: Theme.tight

        TextField {
            id: field
            objectName: "browser.find"
            icon: "edit-find"
            placeholderText: qsTr("Find on the page")
            focus: true
            Keys.onReturnPressed: event => bar.screen.find(text, event.modifiers & Qt.ShiftModifier)
            Keys.onEscapePressed: bar.closed()
        }
        IconButton {
            icon.name: "go-up"
            text: qsTr("Previous")
            key: "Shift+Return"
            onClicked: bar.screen.find(field.text, true)
        }
        IconButton {
            icon.name: "go-down"
            text: qsTr("Next")
            key: "Return"
            onClicked: bar.screen.find(field.text, false)
        }
        IconButton {
            icon.name: "window-close"
            iconSize: 14
            text: qsTr("Close")
            key: "Esc"
            onClicked: bar.closed()
        }
    }
}
