import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Panel

/// One line for a task or a note, above every other program.
T.ApplicationWindow {
    id: window

    required property QuickCapture capture

    title: qsTr("Capture")
    readonly property int wantedHeight: parts.implicitHeight + Theme.large * 2
    width: 560
    height: wantedHeight
    // A window of one size floats on tiling desktops.
    minimumWidth: 560
    maximumWidth: 560
    minimumHeight: wantedHeight
    maximumHeight: wantedHeight
    color: Theme.surface
    font: Qt.application.font
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    onVisibleChanged: if (visible) field.forceActiveFocus(Qt.ShortcutFocusReason)
    onClosing: capture.close()

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: window.capture.close()

        Column {
            id: parts
            x: Theme.large
            y: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.medium

            TextField {
                id: field
                objectName: "capture.text"
                width: parent.width
                focus: true
                placeholderText: window.capture.prompt
                text: window.capture.text
                onTextEdited: window.capture.text = text
                onAccepted: window.capture.save()
            }
            Item {
                width: parent.width
                implicitHeight: kinds.implicitHeight
                Row {
                    id: kinds
                    spacing: Theme.tight
                    Repeater {
                        model: window.capture.kinds
                        Chip {
                            required property choice modelData
                            objectName: "capture." + modelData.id
                            implicitHeight: 28
                            text: modelData.label
                            checkable: false
                            checked: window.capture.kind === modelData.id
                            Accessible.role: Accessible.RadioButton
                            onClicked: window.capture.kind = modelData.id
                            Keys.onReturnPressed: window.capture.save()
                        }
                    }
                }
                Label {
                    anchors.left: kinds.right
                    anchors.leftMargin: Theme.medium
                    anchors.right: parent.right
                    anchors.verticalCenter: kinds.verticalCenter
                    horizontalAlignment: Text.AlignRight
                    text: window.capture.hint
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                }
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        z: 100
        color: Theme.none
        border.width: 1
        border.color: Theme.line
    }
}
