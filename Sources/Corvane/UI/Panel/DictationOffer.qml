import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Panel

/// Dictated text that could not be inserted, to be copied.
T.ApplicationWindow {
    id: window

    required property DictationAnywhere dictation

    title: qsTr("Dictation")
    readonly property int wantedHeight: parts.implicitHeight + Theme.large * 2
    width: 420
    height: wantedHeight
    // A window of one size floats on tiling desktops.
    minimumWidth: 420
    maximumWidth: 420
    minimumHeight: wantedHeight
    maximumHeight: wantedHeight
    color: Theme.surface
    font: Qt.application.font
    flags: Qt.Dialog | Qt.WindowStaysOnTopHint
    onVisibleChanged: if (visible) copy.forceActiveFocus(Qt.ShortcutFocusReason)
    onClosing: dictation.dismissOffer()

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: window.dictation.dismissOffer()

        Column {
            id: parts
            x: Theme.large
            y: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.medium

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
    }
}
