import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A message to somebody new: through which account, to whom, and what.
Sheet {
    id: sheet

    required property ComposeSheet compose ///< the view model

    objectName: "newMessage"
    title: compose.title
    onAboutToShow: {
        recipient.text = compose.recipient;
        subject.text = compose.subject;
        message.text = compose.message;
        recipient.forceActiveFocus(Qt.TabFocusReason);
    }
    onClosed: compose.close()

    Connections {
        target: sheet.compose
        function onChanged() {
            if (sheet.compose.shown !== sheet.opened)
                sheet.compose.shown ? sheet.open() : sheet.close();
        }
    }

    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.compose.emptyText
        color: Theme.soft
    }
    Flow {
        width: parent.width
        spacing: Theme.small
        visible: sheet.compose.accounts.length > 1
        Repeater {
            model: sheet.compose.accounts
            Chip {
                required property accountChoice modelData
                implicitHeight: 28
                mark: modelData.channel
                text: modelData.label
                checkable: true
                autoExclusive: true
                checked: sheet.compose.accountId === modelData.id
                onClicked: sheet.compose.accountId = modelData.id
            }
        }
    }
    TextField {
        id: recipient
        objectName: "newMessage.recipient"
        width: parent.width
        visible: sheet.compose.emptyText === ""
        label: sheet.compose.recipientLabel
        placeholderText: sheet.compose.recipientExample
        onTextEdited: sheet.compose.recipient = text
        onAccepted: (subject.visible ? subject : message).forceActiveFocus(Qt.TabFocusReason)
    }
    TextField {
        id: subject
        objectName: "newMessage.subject"
        width: parent.width
        visible: sheet.compose.emptyText === "" && sheet.compose.takesSubject
        label: qsTr("Subject")
        onTextEdited: sheet.compose.subject = text
        onAccepted: message.forceActiveFocus(Qt.TabFocusReason)
    }
    TextBox {
        id: message
        objectName: "newMessage.message"
        width: parent.width
        height: implicitHeight
        visible: sheet.compose.emptyText === ""
        label: qsTr("Message")
        minimumLines: 4
        onTextChanged: sheet.compose.message = text
        onSubmitted: sheet.compose.submit()
        pasteFiles: sheet.compose.attachments.allowed
        onFilesPasted: sheet.compose.attachments.paste(WindowTools.clipboardFiles(), WindowTools.clipboardPicture())

        DropArea {
            anchors.fill: parent
            enabled: sheet.compose.attachments.allowed
            onEntered: drag => drag.accepted = drag.hasUrls
            onDropped: drop => sheet.compose.attachments.add(drop.urls)
        }
    }
    Row {
        width: parent.width
        visible: sheet.compose.attachments.allowed || files.visible
        spacing: Theme.small
        AttachButton {
            id: attach
            labelled: files.count === 0
            attachments: sheet.compose.attachments
        }
        AttachmentList {
            id: files
            width: parent.width - attach.width - parent.spacing
            attachments: sheet.compose.attachments
        }
    }
    Label {
        width: parent.width
        visible: sheet.compose.emptyText === ""
        wrapMode: Text.Wrap
        text: sheet.compose.errorText !== "" ? sheet.compose.errorText : sheet.compose.note
        color: sheet.compose.errorText !== "" ? Theme.bad : Theme.soft
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "newMessage.submit"
            kind: "primary"
            enabled: sheet.compose.valid
            text: sheet.compose.submitLabel
            onClicked: sheet.compose.submit()
        }
    ]
}
