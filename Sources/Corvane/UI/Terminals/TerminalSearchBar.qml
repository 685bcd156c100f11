import QtQuick
import Corvane.Controls
import Corvane.Terminals

/// The search in a terminal: the query, the number of matches, and moving between them.
FocusScope {
    id: bar

    required property TerminalSearch search

    signal closed

    width: row.implicitWidth + Theme.small * 2
    height: Theme.control + Theme.small * 2
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Find in the terminal")
    Component.onCompleted: {
        field.forceActiveFocus();
        field.selectAll();
    }

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
            objectName: "terminalSearch.field"
            width: 260
            icon: "edit-find"
            placeholderText: qsTr("Find in the terminal")
            focus: true
            text: bar.search?.text ?? ""
            rightPadding: status.implicitWidth + Theme.medium
            onTextEdited: bar.search.text = text
            Keys.onReturnPressed: event => event.modifiers & Qt.ShiftModifier ? bar.search.previous() : bar.search.next()
            Keys.onEscapePressed: bar.closed()

            Label {
                id: status
                objectName: "terminalSearch.status"
                anchors.right: parent.right
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                text: bar.search?.status ?? ""
                font.pixelSize: Theme.meta
                color: Theme.soft
            }
        }
        IconButton {
            icon.name: "go-up"
            text: qsTr("Older")
            key: "Return"
            onClicked: bar.search.next()
        }
        IconButton {
            icon.name: "go-down"
            text: qsTr("Newer")
            key: "Shift+Return"
            onClicked: bar.search.previous()
        }
        Button {
            kind: checked ? "plain" : "quiet"
            text: "Aa"
            hint: qsTr("Match case")
            checkable: true
            checked: bar.search?.matchCase ?? false
            Accessible.name: hint
            onToggled: bar.search.matchCase = checked
        }
        Button {
            kind: checked ? "plain" : "quiet"
            text: ".*"
            hint: qsTr("Regular expression")
            checkable: true
            checked: bar.search?.regex ?? false
            Accessible.name: hint
            onToggled: bar.search.regex = checked
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
