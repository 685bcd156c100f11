import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// One line of input. `label` stands above it and names it aloud; without one the placeholder does.
T.TextField {
    id: control

    property string label
    property string icon

    implicitWidth: 240
    implicitHeight: Theme.control + (label ? caption.height + Theme.tight : 0)
    topPadding: label ? caption.height + Theme.tight : 0
    leftPadding: icon ? 34 : Theme.medium
    rightPadding: Theme.medium
    verticalAlignment: TextInput.AlignVCenter
    color: readOnly ? Theme.soft : Theme.text
    font.pixelSize: Theme.body
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentInk
    selectByMouse: true
    Accessible.name: label || placeholderText

    Label {
        id: caption
        visible: control.label !== ""
        text: control.label
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    Icon {
        visible: control.icon !== ""
        x: Theme.small + 2
        y: control.topPadding + (control.height - control.topPadding - height) / 2
        name: control.icon
        color: control.activeFocus ? Theme.accent : Theme.faint
    }
    PlaceholderLabel {
        leftPadding: control.leftPadding
        rightPadding: control.rightPadding
        topPadding: control.topPadding
        bottomPadding: control.bottomPadding
        text: control.placeholderText
        shown: !control.length && !control.preeditText
    }

    background: Item {
        implicitHeight: Theme.control
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: control.topPadding
            radius: Theme.controlRadius
            color: Theme.raised
            border.width: 1
            border.color: control.hovered ? Theme.faint : Theme.line
            FocusRing { control: control; anchors.margins: -1; radius: Theme.controlRadius + 1; shown: control.activeFocus }
        }
    }
}
