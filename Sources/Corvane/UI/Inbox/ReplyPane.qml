import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The reply: its text, its channel, or a voice note.
FocusScope {
    id: pane

    required property InboxView inbox
    readonly property Composer composer: inbox.reply.composer ///< the view model
    readonly property ComposerVoice voice: composer.voice

    signal askLumo

    implicitHeight: content.implicitHeight + Theme.medium * 2
    visible: composer.contactId !== ""
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Reply")

    function focusField() {
        field.forceActiveFocus(Qt.TabFocusReason);
        field.moveToEnd();
    }

    function openAssistant() {
        assistant.openMenu();
    }

    Connections {
        target: pane.composer
        function onFocusRequested() {
            pane.focusField();
        }
    }
    Connections {
        target: pane.voice
        function onDictated(text: string) {
            const cursor = pane.composer.insertDictation(text, field.cursorPosition);
            field.forceActiveFocus(Qt.TabFocusReason);
            field.cursorPosition = cursor;
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
        Rectangle {
            width: parent.width
            height: 1
            color: Theme.line
        }
    }
    DropArea {
        id: drop
        anchors.fill: parent
        enabled: !pane.voice.showsNote
        onEntered: drag => drag.accepted = drag.hasUrls || drag.hasText
        onDropped: drop => {
            if (drop.hasUrls && drop.urls.every(url => url.toString().startsWith("file:")))
                pane.composer.dropFiles(drop.urls);
            else
                pane.composer.dropText(drop.text);
            drop.accept(Qt.CopyAction);
        }
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: Theme.tight
        visible: drop.containsDrag
        radius: Theme.controlRadius
        color: Theme.tint
        border.width: 2
        border.color: Theme.accent
    }
    Column {
        id: content
        anchors.verticalCenter: parent.verticalCenter
        x: Theme.large
        width: parent.width - Theme.large * 2
        spacing: Theme.small

        UnsentList {
            width: parent.width
            unsent: pane.composer.unsent
        }
        Banner {
            objectName: "composer.error"
            width: parent.width
            visible: text !== ""
            tone: "bad"
            text: pane.composer.sendError
            dismissable: true
            onDismissed: pane.composer.dismissError()
        }
        Banner {
            objectName: "composer.voiceNotice"
            width: parent.width
            visible: text !== ""
            tone: "warn"
            text: pane.voice.note.notice
            dismissable: true
            onDismissed: pane.voice.note.dismissNotice()
        }
        AttachmentList {
            width: parent.width
            attachments: pane.composer.attachments
        }
        TextField {
            objectName: "composer.subject"
            width: parent.width
            visible: pane.composer.routing.takesSubject && !pane.voice.showsNote
            placeholderText: qsTr("Subject (empty: as before)")
            Accessible.name: qsTr("Subject")
            text: pane.composer.subject
            onTextEdited: pane.composer.subject = text
            onAccepted: pane.focusField()
        }
        VoiceNote {
            width: parent.width
            visible: pane.voice.showsNote
            composer: pane.composer
        }
        DictationBar {
            width: parent.width
            visible: dictation.state !== "idle" && !pane.voice.showsNote
            dictation: pane.voice.dictation
            onModelWanted: pane.inbox.person.openVoiceSettings()
        }
        Item {
            width: parent.width
            height: field.implicitHeight
            visible: !pane.voice.showsNote

            ReplyChannel {
                id: channel
                anchors.bottom: parent.bottom
                routing: pane.composer.routing
            }
            TextBox {
                id: field
                objectName: "composer"
                anchors.left: channel.right
                anchors.leftMargin: Theme.small
                anchors.right: tools.left
                anchors.rightMargin: Theme.small
                height: implicitHeight
                focus: true
                placeholderText: pane.composer.hints.placeholder
                returnSubmits: pane.composer.hints.returnSends
                text: pane.composer.text
                onTextChanged: pane.composer.text = text
                onSubmitted: pane.composer.send()
                pasteFiles: pane.composer.attachments.allowed
                onFilesPasted: pane.composer.attachments.paste(WindowTools.clipboardFiles(), WindowTools.clipboardPicture())
            }
            Row {
                id: tools
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                spacing: Theme.tight

                AttachButton { attachments: pane.composer.attachments }
                IconButton {
                    property bool held ///< it listens until the button is let go
                    objectName: "composer.dictate"
                    icon.name: "dictate"
                    text: pane.voice.dictation.active ? qsTr("Finish dictating")
                        : qsTr("Dictate, or hold while speaking (Ctrl+Shift+D)")
                    onClicked: pane.voice.dictate()
                    onPressAndHold: {
                        held = !pane.voice.dictation.active;
                        pane.voice.dictate();
                    }
                    onReleased: letGo()
                    onCanceled: letGo()
                    function letGo() {
                        if (held)
                            pane.voice.dictation.letGo();
                        held = false;
                    }
                }
                IconButton {
                    objectName: "composer.voice"
                    icon.name: "microphone"
                    text: qsTr("Record a voice note")
                    onClicked: pane.voice.startNote()
                }
                AssistantMenu {
                    id: assistant
                    reply: pane.inbox.reply
                    onAskAsked: pane.askLumo()
                }
                Button {
                    objectName: "composer.send"
                    kind: "primary"
                    enabled: pane.composer.canSend
                    icon.name: "mail-send"
                    text: qsTr("Send")
                    hint: pane.composer.hints.sendKeys
                    onClicked: {
                        pane.composer.send();
                        pane.focusField();
                    }
                }
            }
        }
    }
}
