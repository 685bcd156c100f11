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

    RecordingCard {
        id: card
        x: Theme.medium
        y: Theme.medium
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
            label: tab.panel.callSettings.autoRecordLabel
            hint: tab.panel.callSettings.autoRecordText
            Toggle {
                objectName: "panel.autoRecord"
                checked: tab.panel.callSettings.autoRecord
                Accessible.name: tab.panel.callSettings.autoRecordLabel
                onToggled: tab.panel.callSettings.autoRecord = checked
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
