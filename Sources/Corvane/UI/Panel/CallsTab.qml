import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls
import Corvane.Panel

/// Records a call from the panel, and leads to the latest ones.
FocusScope {
    id: tab

    required property CorvaneMenuBarView panel
    readonly property CallsView calls: panel.calls
    readonly property CallSettings settings: panel.callSettings

    SectionHeader {
        id: head
        x: Theme.medium + Theme.small
        y: Theme.medium
        text: qsTr("Call Intelligence")
    }
    RecordingCard {
        id: card
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        recording: tab.calls.recording
    }
    Card {
        id: meetings
        anchors.top: card.bottom
        anchors.topMargin: Theme.small
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        padding: Theme.medium
        SettingRow {
            label: tab.settings.autoRecordLabel
            hint: tab.settings.autoRecordText
            Toggle {
                objectName: "panel.autoRecord"
                checked: tab.settings.autoRecord
                Accessible.name: tab.settings.autoRecordLabel
                onToggled: tab.settings.autoRecord = checked
            }
        }
        SettingRow {
            visible: tab.settings.autoRecord
            label: tab.settings.requireMeetingAppLabel
            Toggle {
                objectName: "panel.requireApp"
                checked: tab.settings.requireMeetingApp
                Accessible.name: tab.settings.requireMeetingAppLabel
                onToggled: tab.settings.requireMeetingApp = checked
            }
        }
        SettingRow {
            label: tab.settings.systemAudioLabel
            Toggle {
                objectName: "panel.systemAudio"
                checked: tab.settings.systemAudio
                Accessible.name: tab.settings.systemAudioLabel
                onToggled: tab.settings.systemAudio = checked
            }
        }
    }
    PanelLine {
        id: proposals
        objectName: "panel.callProposals"
        anchors.top: meetings.bottom
        anchors.topMargin: Theme.tight
        x: Theme.small
        width: parent.width - Theme.small * 2
        enabled: tab.calls.proposals > 0
        sign: "approvals"
        text: tab.calls.proposalsText
        onClicked: tab.panel.reviewAll()
    }
    ListView {
        id: list
        objectName: "panel.calls"
        anchors.top: proposals.bottom
        anchors.topMargin: Theme.tight
        anchors.bottom: parent.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        model: tab.calls.rows
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Calls")
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onReturnPressed: (currentItem as T.AbstractButton)?.clicked()
        section.property: "day"
        section.delegate: SectionHeader {
            required property string section
            leftPadding: Theme.medium
            topPadding: Theme.small
            bottomPadding: Theme.tight
            text: section
        }

        KeyboardFocus { id: keyboard; target: list }

        delegate: CallLine {
            objectName: "panel.call"
            width: ListView.view.width
            ringed: keyboard.shown && ListView.isCurrentItem
            onClicked: tab.panel.openCall(call.id)
        }
    }
    EmptyState {
        anchors.horizontalCenter: parent.horizontalCenter
        y: list.y + 40
        width: parent.width - Theme.huge * 2
        visible: list.count === 0
        icon: "call-start"
        title: tab.calls.emptyTitle
        detail: tab.calls.emptyText
    }
}
