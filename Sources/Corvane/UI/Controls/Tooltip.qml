import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A few words after a moment of hovering.
T.ToolTip {
    id: control

    property bool shown: false

    visible: shown && text !== "" && OpenMenus.count === 0
    delay: 500
    y: parent ? parent.height + Theme.tight : 0
    x: parent ? (parent.width - width) / 2 : 0
    margins: Theme.small
    padding: Theme.small
    topPadding: 5
    bottomPadding: 5
    implicitWidth: contentItem.implicitWidth + leftPadding + rightPadding
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent

    contentItem: Label {
        text: control.text
        font.pixelSize: Theme.meta
        color: Theme.surface
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: Theme.text
    }
}
