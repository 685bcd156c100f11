import QtQuick
import Corvane.Controls
import Corvane.Settings

/// The web account, its workspaces, the push, the state of the mirror, and the local tool server.
Column {
    id: section

    required property IntegrationsView settings
    readonly property SyncSettings sync: settings.sync
    readonly property ToolServerCard toolServer: settings.toolServer

    spacing: Theme.large

    function tone(kind: string): color {
        return kind === "good" ? Theme.good : kind === "bad" ? Theme.bad : kind === "busy" ? Theme.warn : Theme.soft;
    }

    Card {
        width: parent.width
        SettingRow {
            label: section.sync.displayLine
            hint: section.sync.stateText === label ? "" : section.sync.stateText
            Button {
                objectName: "sync.account"
                kind: section.sync.signedIn ? "plain" : "primary"
                text: section.sync.actionLabel
                onClicked: section.sync.signInOrOut()
            }
        }
    }
    WebCard {
        width: parent.width
        web: section.settings.web
    }
    PushCard {
        width: parent.width
        push: section.settings.push
        stateColour: section.tone(push.stateKind)
    }
    PushView { review: section.settings.push.sheet }
    Card {
        width: parent.width
        SectionHeader { text: qsTr("Web mirror") }
        Label {
            width: parent.width
            visible: section.sync.health.length === 0
            wrapMode: Text.Wrap
            text: section.sync.emptyHealthText
            color: Theme.soft
        }
        Repeater {
            model: section.sync.health
            SettingRow {
                id: line
                required property syncHealthLine modelData
                width: parent.width
                label: modelData.source
                hint: modelData.detail
                Label {
                    text: line.modelData.status
                    color: section.tone(line.modelData.kind)
                }
            }
        }
        SettingRow {
            label: section.sync.queueHint
            hint: section.sync.queuedText
            Button {
                objectName: "sync.queue"
                text: section.sync.queueLabel
                onClicked: section.sync.queuePull()
            }
        }
    }
    Card {
        width: parent.width
        SettingRow {
            label: section.toolServer.title
            hint: [section.toolServer.stateText, section.toolServer.url, section.sync.engineText].filter(text => text).join(" · ")
            Button {
                objectName: "toolServer.toggle"
                text: section.toolServer.actionLabel
                onClicked: section.toolServer.startOrStop()
            }
        }
    }
}
