import QtQuick
import Corvane.Approvals
import Corvane.Controls

/// What waits, as a card of the settings.
Card {
    id: card

    required property ApprovalsView approvals

    signal reviewed

    SectionHeader { text: qsTr("Waiting") }
    Label {
        width: parent.width
        visible: card.approvals.count === 0
        text: card.approvals.settingsEmptyText
        wrapMode: Text.Wrap
        color: Theme.soft
    }
    ApprovalList {
        x: -sideMargin
        width: parent.width + sideMargin * 2
        height: Math.min(fullHeight, 420)
        visible: count > 0
        approvals: card.approvals
    }
    Rectangle {
        width: parent.width
        height: 1
        visible: card.approvals.count > 0
        color: Theme.line
    }
    SettingRow {
        label: card.approvals.waitingText
        hint: card.approvals.sourceText
        Button {
            objectName: "settings.reviewApprovals"
            text: card.approvals.reviewLabel
            onClicked: card.reviewed()
        }
    }
}
