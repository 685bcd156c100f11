import QtQuick
import Corvane.Approvals
import Corvane.Controls
import Corvane.Settings

/// What waits for a person, and from where approvals can be given.
Column {
    id: section

    required property IntegrationsView settings
    required property ApprovalsView approvals

    signal reviewed

    spacing: Theme.large

    Label {
        objectName: "approvals.rule"
        width: parent.width
        text: section.settings.approvalRule
        wrapMode: Text.Wrap
        color: Theme.soft
    }
    WaitingCard {
        width: parent.width
        approvals: section.approvals
        onReviewed: section.reviewed()
    }
    ControlChatCard {
        width: parent.width
        chat: section.settings.controlChat
    }
}
