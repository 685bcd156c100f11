import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Work

/// The answer to a question: a person's own, or the assistant's.
Sheet {
    id: sheet

    required property OpsAsks asks
    readonly property bool wanted: asks.answering !== ""

    onWantedChanged: {
        if (wanted) {
            open();
            answer.forceActiveFocus(Qt.TabFocusReason);
        } else {
            close();
        }
    }
    onClosed: if (wanted) asks.closeAnswer()

    objectName: "answerSheet"
    width: 480
    title: qsTr("Answer")

    Binding { target: answer; property: "text"; value: sheet.asks.answerText }

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        maximumLineCount: 12
        text: sheet.asks.answering
        font.weight: Theme.strong
    }
    Label {
        width: parent.width
        visible: text !== ""
        text: sheet.asks.facts
        font.pixelSize: Theme.meta
        color: Theme.faint
    }
    TextBox {
        id: answer
        objectName: "answer.text"
        width: parent.width
        label: qsTr("Your answer")
        minimumLines: 3
        maximumLines: 10
        onTextChanged: if (editing) sheet.asks.answerText = text
        onSubmitted: sheet.asks.saveAnswer()
    }
    Label {
        objectName: "answer.error"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.asks.error
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: [
        Button {
            objectName: "answer.lumo"
            kind: "quiet"
            icon.name: "hub-lumo"
            text: sheet.asks.busy ? qsTr("Stop Lumo") : qsTr("Let Lumo answer")
            onClicked: sheet.asks.busy ? sheet.asks.cancelLumo() : sheet.asks.answerWithLumo()
        },
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.asks.closeAnswer()
        },
        Button {
            objectName: "answer.save"
            kind: "primary"
            text: qsTr("Save answer")
            hint: "Ctrl+Return"
            onClicked: sheet.asks.saveAnswer()
        }
    ]
}
