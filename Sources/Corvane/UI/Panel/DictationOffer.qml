import QtQuick
import Corvane.Controls
import Corvane.Panel

/// Dictated text that could not be inserted, to be copied.
FloatingFrame {
    id: window

    required property DictationAnywhere dictation

    title: qsTr("Dictation")
    fixedWidth: 420
    flags: Qt.Dialog | Qt.WindowStaysOnTopHint
    onVisibleChanged: if (visible) copy.forceActiveFocus(Qt.ShortcutFocusReason)
    onDismissed: dictation.dismissOffer()

    Label {
        objectName: "dictationOffer.reason"
        width: parent.width
        wrapMode: Text.Wrap
        text: window.dictation.offerReason
        color: Theme.soft
    }
    TextBox {
        objectName: "dictationOffer.text"
        width: parent.width
        readOnly: true
        text: window.dictation.offeredText
        Accessible.name: qsTr("Dictated text")
    }
    Row {
        anchors.right: parent.right
        spacing: Theme.small
        Button {
            objectName: "dictationOffer.dismiss"
            kind: "quiet"
            text: qsTr("Dismiss")
            onClicked: window.dictation.dismissOffer()
        }
        Button {
            id: copy
            objectName: "dictationOffer.copy"
            kind: "primary"
            icon.name: "edit-copy"
            text: qsTr("Copy")
            onClicked: {
                WindowTools.copy(window.dictation.offeredText);
                window.dictation.dismissOffer();
            }
        }
    }
}
