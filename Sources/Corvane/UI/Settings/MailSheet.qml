import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Connects a mailbox by its address and a password; what was found about its servers is folded below.
FormSheet {
    id: sheet

    required property MailForm mail

    form: mail
    objectName: "connectSheet"
    width: 520
    onBegun: fields.focusFirst()

    SheetHint {
        visible: !sheet.mail.serversShown || sheet.mail.message === "" // a small window has no room for both
        text: sheet.mail.hint
    }
    Column {
        width: parent.width
        spacing: Theme.medium
        enabled: !sheet.mail.busy

        FormFields {
            id: fields
            form: sheet.mail
        }
        Disclosure {
            objectName: "connect.servers"
            width: parent.width
            text: sheet.mail.serversLabel
            detail: sheet.mail.serversText
            open: sheet.mail.serversShown
            onClicked: sheet.mail.serversShown = !sheet.mail.serversShown
        }
        Column {
            width: parent.width
            spacing: Theme.medium
            visible: sheet.mail.serversShown
            MailServerRow {
                width: parent.width
                server: sheet.mail.imap
            }
            MailServerRow {
                width: parent.width
                server: sheet.mail.smtp
            }
            FormFields {
                form: sheet.mail
                folded: true
                columns: 2
            }
        }
    }
}
