import QtQuick
import Corvane.Controls
import Corvane.Panel

/// One line for a task or a note, above every other program.
FloatingFrame {
    id: window

    required property QuickCapture capture

    title: qsTr("Capture")
    fixedWidth: 560
    bordered: true
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    onVisibleChanged: if (visible) field.forceActiveFocus(Qt.ShortcutFocusReason)
    onDismissed: capture.close()

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
