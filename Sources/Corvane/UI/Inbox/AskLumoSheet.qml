import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A question about the person whose thread is open.
Sheet {
    id: sheet

    required property AskLumo askLumo ///< the view model

    signal settingsAsked

    objectName: "askLumo"
    title: askLumo.heading
    width: 520
    onAboutToShow: {
        askLumo.lookForBackend();
        question.text = askLumo.question;
        question.forceActiveFocus(Qt.TabFocusReason);
    }
    onClosed: if (askLumo.state === "loading") askLumo.dismiss()

    TextBox {
        id: question
        objectName: "askLumo.question"
        width: parent.width
        height: implicitHeight
        minimumLines: 2
        placeholderText: sheet.askLumo.placeholder
        onSubmitted: sheet.askLumo.ask(text)
    }
    GenerationCard {
        objectName: "askLumo.answer"
        width: parent.width
        panel: sheet.askLumo
        name: qsTr("Answer")
        onDismissed: question.forceActiveFocus(Qt.TabFocusReason)
        TextEdit {
            objectName: "askLumo.text"
            width: parent.width
            text: sheet.askLumo.answer
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            readOnly: true
            selectByMouse: true
            color: Theme.text
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentInk
            font.pixelSize: Theme.body
            Accessible.name: sheet.askLumo.answer
        }
    }
    Label {
        width: parent.width
        text: sheet.askLumo.footer
        font.pixelSize: Theme.meta
        color: Theme.soft
        wrapMode: Text.Wrap
    }
    buttons: [
        Button {
            objectName: "askLumo.settings"
            visible: !sheet.askLumo.canAsk
            kind: "quiet"
            text: qsTr("Assistant settings")
            onClicked: {
                sheet.close();
                sheet.settingsAsked();
            }
        },
        Button {
            kind: "quiet"
            text: qsTr("Close")
            onClicked: sheet.close()
        },
        Button {
            objectName: "askLumo.ask"
            kind: "primary"
            enabled: sheet.askLumo.canAsk && question.text.trim() !== "" && sheet.askLumo.state !== "loading"
            text: sheet.askLumo.actionLabel
            hint: Commands.keysOf("send")
            onClicked: sheet.askLumo.ask(question.text)
        }
    ]
}
