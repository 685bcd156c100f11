import QtQuick
import QtQuick.Layouts
import Corvane.Controls
import Corvane.Settings

/// The accounts with their state and actions, and under them what can be connected.
FocusScope {
    id: section

    required property AccountsView accounts
    readonly property GadgetListModel rows: accounts.rows

    implicitHeight: column.implicitHeight

    function perform(accountId: string, action: accountAction) {
        if (!action.confirmation) {
            accounts.perform(accountId, action.id);
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
            visible: section.rows.count === 0
            icon: "link"
            title: section.accounts.emptyTitle
            detail: section.accounts.emptyText
        }
        Rectangle {
            width: parent.width
            height: lines.implicitHeight
            visible: section.rows.count > 0
            radius: Theme.cardRadius
            color: Theme.surface
            border.width: 1
            border.color: Theme.line

            Column {
                id: lines
                width: parent.width
                Repeater {
                    model: section.rows
                    AccountLine {
                        id: line
                        width: lines.width
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
                model: section.accounts.connectFlows
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
                    onClicked: section.accounts.connectChannel(modelData.channel)
                }
            }
        }
    }
    ConnectSheet { form: section.accounts.connectForm }
    MailSheet { mail: section.accounts.mailForm }
    Loader {
        id: question
        active: false
        sourceComponent: ConfirmSheet {
            onConfirmed: (accountId, actionId) => section.accounts.perform(accountId, actionId)
        }
    }
}
