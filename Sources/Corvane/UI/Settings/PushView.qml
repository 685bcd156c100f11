import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Settings

/// What the user reads before a push: what leaves the machine, and what can be excluded.
Sheet {
    id: sheet

    required property PushSheet review
    property pushAccountLine noAccount

    objectName: "pushSheet"
    title: review.title
    width: 560
    onClosed: review.close()
    Component.onCompleted: follow()

    function follow() {
        if (review.isOpen)
            open();
        else
            close();
    }

    Connections {
        target: sheet.review
        function onChanged() { sheet.follow(); }
    }

    component KeepButton: Button {
        required property bool kept
        required property string about

        signal turned(bool keep)

        kind: "quiet"
        text: kept ? qsTr("Undo") : qsTr("Keep local")
        Accessible.name: kept ? qsTr("Push %1 anyway").arg(about) : qsTr("Keep %1 local").arg(about)
        onClicked: turned(!kept)
    }

    Column {
        width: parent.width
        spacing: Theme.tight
        Label {
            objectName: "pushSheet.target"
            width: parent.width
            text: sheet.review.targetText
            color: Theme.soft
        }
        Label {
            objectName: "pushSheet.summary"
            width: parent.width
            visible: sheet.review.state === "filled"
            wrapMode: Text.Wrap
            text: sheet.review.summaryText
            font.weight: Theme.strong
        }
        Label {
            width: parent.width
            visible: sheet.review.state === "filled"
            wrapMode: Text.Wrap
            lineHeight: 1.3
            text: sheet.review.contentText
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
    }
    Skeleton {
        width: parent.width
        active: sheet.review.state === "loading"
        rows: 3
    }
    EmptyState {
        width: parent.width
        visible: sheet.review.state === "empty"
        icon: "dialog-ok"
        title: qsTr("Nothing waits")
        detail: qsTr("All chats that may be pushed are on the web.")
    }
    EmptyState {
        width: parent.width
        visible: sheet.review.state === "failed"
        icon: "dialog-error"
        title: qsTr("The messages could not be read")
        detail: qsTr("Nothing was sent.")
        action: qsTr("Try again")
        onActed: sheet.review.retry()
    }
    Flickable {
        width: parent.width
        height: Math.min(contentHeight, 44 * 3.5)
        visible: contentHeight > 0
        contentHeight: accounts.implicitHeight
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: ScrollBar {}
        Column {
            id: accounts
            width: parent.width - Theme.medium
            spacing: Theme.small
            Repeater {
                model: sheet.review.accounts.length
                SettingRow {
                    id: account
                    required property int index
                    readonly property pushAccountLine line: sheet.review.accounts[index] ?? sheet.noAccount
                    width: parent.width
                    label: line.name
                    hint: line.kept ? qsTr("Every chat of this account is kept local") : line.detail
                    KeepButton {
                        objectName: "pushSheet.account." + account.line.slug
                        kept: account.line.kept
                        about: account.line.name
                        onTurned: keep => sheet.review.keepAccount(account.line.slug, keep)
                    }
                }
            }
        }
    }
    ListView {
        id: rows
        objectName: "pushSheet.chats"
        width: parent.width
        height: Math.min(contentHeight, 48 * 5.5) // half a row tells that there are more
        visible: count > 0
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: sheet.review.chats
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Chats")
        T.ScrollBar.vertical: ScrollBar {}
        delegate: Item {
            id: line
            required property pushChatLine chat
            width: ListView.view.width
            height: 48
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.line
            }
            SettingRow {
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width - Theme.medium
                label: line.chat.title
                hint: line.chat.kept ? qsTr("Kept local") : line.chat.detail
                KeepButton {
                    objectName: "pushSheet.chat." + line.chat.id
                    kept: line.chat.kept
                    about: line.chat.title
                    onTurned: keep => sheet.review.keepChat(line.chat.id, keep)
                }
            }
        }
    }
    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.review.moreText
        font.pixelSize: Theme.meta
        color: Theme.faint
    }
    Label {
        objectName: "pushSheet.dryRun"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.review.dryRunText
        font.pixelSize: Theme.meta
        color: sheet.review.dryRunFailed ? Theme.bad : Theme.good
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: [
        Button {
            objectName: "pushSheet.file"
            kind: "quiet"
            visible: sheet.review.state === "filled"
            enabled: !sheet.review.writing
            text: sheet.review.writing ? qsTr("Saving…") : qsTr("Save as a file")
            hint: qsTr("Every request as it would be sent")
            onClicked: sheet.review.writeDryRun()
        },
        Button {
            objectName: "pushSheet.cancel"
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "pushSheet.push"
            kind: "primary"
            enabled: sheet.review.canPush
            text: qsTr("Push")
            onClicked: sheet.review.push()
        }
    ]
}
