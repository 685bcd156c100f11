import QtQuick
import Corvane.Controls
import Corvane.Settings

/// The workspaces of the web account, of which one is in use, and its integrations.
Card {
    id: card

    required property WebSettings web
    property workspaceChoice noLine

    SectionHeader { text: qsTr("Workspace and integrations") }
    SettingRow {
        label: card.web.signedIn ? card.web.workspaceText : card.web.stateText
        hint: card.web.signedIn ? card.web.workspaceHint || (card.web.failed ? "" : card.web.stateText) : ""
        Button {
            objectName: "web.refresh"
            visible: card.web.signedIn
            enabled: !card.web.busy
            icon.name: "view-refresh"
            text: qsTr("Refresh")
            onClicked: card.web.refresh()
        }
    }
    Banner {
        objectName: "web.error"
        width: parent.width
        visible: card.web.failed
        tone: "bad"
        text: visible ? card.web.stateText : ""
        action: qsTr("Try again")
        onActed: card.web.refresh()
    }
    SearchField {
        objectName: "web.search"
        width: parent.width
        visible: card.web.signedIn && card.web.searchable
        placeholderText: qsTr("Find a workspace")
        text: card.web.query
        onTextEdited: card.web.query = text
        onCleared: card.web.query = ""
    }
    Column {
        width: parent.width
        visible: card.web.signedIn
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Workspaces")
        Repeater {
            model: card.web.workspaces.length
            WorkspaceRow {
                required property int index
                width: parent.width
                line: card.web.workspaces[index] ?? card.noLine
                onChosen: id => card.web.choose(id)
            }
        }
    }
    Label {
        width: parent.width
        visible: card.web.signedIn && text !== ""
        text: card.web.moreText
        font.pixelSize: Theme.meta
        color: Theme.faint
    }
    Rectangle {
        width: parent.width
        height: 1
        visible: card.web.signedIn
        color: Theme.line
    }
    Label {
        width: parent.width
        visible: card.web.signedIn && card.web.integrations.length === 0 && text !== ""
        text: card.web.emptyIntegrationsText
        color: Theme.soft
    }
    Repeater {
        model: card.web.signedIn ? card.web.integrations : []
        SettingRow {
            id: row
            required property integrationLine modelData
            width: parent.width
            label: modelData.name
            hint: modelData.detail
            Label {
                text: row.modelData.state
                color: row.modelData.connected ? Theme.good : Theme.warn
            }
        }
    }
}
