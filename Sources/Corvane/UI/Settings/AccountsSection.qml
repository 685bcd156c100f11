import QtQuick
import QtQuick.Layouts
import Corvane.Controls
import Corvane.Settings

/// The accounts with their state and actions, and under them what can be connected.
FocusScope {
    id: section

    required property IntegrationsView settings
    readonly property GadgetListModel accounts: settings.accounts

    implicitHeight: column.implicitHeight

    function perform(accountId: string, action: accountAction) {
        if (!action.confirmation) {
            settings.perform(accountId, action.id);
            return;
        }
        question.active = true;
        (question.item as ConfirmSheet).ask(accountId, action);
    }

    Column {
        id: column
        width: parent.width
        spacing: Theme.large

        EmptyState {
            width: parent.width
            topPadding: Theme.wide
            bottomPadding: Theme.wide
            visible: section.accounts.count === 0
            icon: "link"
            title: section.settings.emptyTitle
            detail: section.settings.emptyText
        }
        Rectangle {
            width: parent.width
            height: rows.implicitHeight
            visible: section.accounts.count > 0
            radius: Theme.cardRadius
            color: Theme.surface
            border.width: 1
            border.color: Theme.line

            Column {
                id: rows
                width: parent.width
                Repeater {
                    model: section.accounts
                    AccountLine {
                        id: line
                        width: rows.width
                        onActed: action => section.perform(line.account.accountId, action)
                    }
                }
            }
        }
        SectionHeader {
            topPadding: Theme.small
            text: qsTr("Connect a channel")
        }
        GridLayout {
            width: parent.width
            columns: 2
            columnSpacing: Theme.medium
            rowSpacing: Theme.medium

            Repeater {
                model: section.settings.connectFlows
                ChannelTile {
                    required property int index
                    required property connectFlow modelData
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    objectName: "connect." + modelData.channel
                    focus: index === 0
                    channel: modelData.channel
                    text: modelData.label
                    detail: modelData.title
                    onClicked: section.settings.connectChannel(modelData.channel)
                }
            }
        }
    }
    ConnectSheet { form: section.settings.connectForm }
    MailSheet { mail: section.settings.mailForm }
    Loader {
        id: question
        active: false
        sourceComponent: ConfirmSheet {
            onConfirmed: (accountId, actionId) => section.settings.perform(accountId, actionId)
        }
    }
}
