import QtQuick
import QtQuick.Layouts
import Corvane.Controls
import Corvane.Settings

/// Connects a mailbox by its address and a password; what was found about its servers is folded below.
Sheet {
    id: sheet

    required property MailForm form

    function follow() {
        if (!form.isOpen)
            return close();
        if (!opened) {
            open();
            (form.address.readOnly ? password : address).forceActiveFocus(Qt.TabFocusReason);
        }
    }

    objectName: "connectSheet"
    title: form.title
    width: 520
    onClosed: form.close()
    Component.onCompleted: follow()

    Connections {
        target: sheet.form
        function onChanged() { sheet.follow(); }
    }

    SheetHint {
        visible: !sheet.form.serversShown || sheet.form.message === "" // a small window has no room for both
        text: sheet.form.hint
    }
    Column {
        width: parent.width
        spacing: Theme.medium
        enabled: !sheet.form.busy

        FormFieldBox {
            id: address
            width: parent.width
            field: sheet.form.address
            onAccepted: password.forceActiveFocus(Qt.TabFocusReason)
        }
        FormFieldBox {
            id: password
            width: parent.width
            field: sheet.form.password
            onAccepted: sheet.form.submit()
        }
        Disclosure {
            objectName: "connect.servers"
            width: parent.width
            text: sheet.form.serversLabel
            detail: sheet.form.serversText
            open: sheet.form.serversShown
            onClicked: sheet.form.serversShown = !sheet.form.serversShown
        }
        Column {
            width: parent.width
            spacing: Theme.medium
            visible: sheet.form.serversShown
            MailServerRow {
                width: parent.width
                server: sheet.form.imap
            }
            MailServerRow {
                width: parent.width
                server: sheet.form.smtp
            }
            RowLayout {
                width: parent.width
                spacing: Theme.small
                FormFieldBox {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    field: sheet.form.userName
                    onAccepted: sheet.form.submit()
                }
                FormFieldBox {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 1
                    field: sheet.form.tokenCommand
                    onAccepted: sheet.form.submit()
                }
            }
        }
    }
    RowLayout {
        width: parent.width
        visible: sheet.form.message !== ""
        spacing: Theme.small
        Icon {
            id: mark
            Layout.alignment: Qt.AlignTop
            name: sheet.form.busy ? "view-refresh" : "dialog-warning"
            color: status.color
            RotationAnimation on rotation {
                running: sheet.form.busy && Theme.pane > 0
                from: 0
                to: 360
                duration: 1600
                loops: Animation.Infinite
                onStopped: mark.rotation = 0
            }
        }
        Label {
            id: status
            objectName: "connect.message"
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            text: sheet.form.message
            color: sheet.form.messageKind === "bad" ? Theme.bad : sheet.form.messageKind === "warn" ? Theme.warn : Theme.soft
            onTextChanged: if (status.text !== "") WindowTools.announce(status)
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
    }
    buttons: [
        Button {
            objectName: "connect.cancel"
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.form.cancel()
        },
        Button {
            objectName: "connect.submit"
            kind: "primary"
            enabled: sheet.form.complete && !sheet.form.busy
            text: sheet.form.buttonLabel
            onClicked: sheet.form.submit()
        }
    ]
}
