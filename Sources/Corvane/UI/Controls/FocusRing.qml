import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// The focus indicator: a ring of two pixels in the accent colour around its parent.
Rectangle {
    required property Item control
    property bool shown: (control as T.Control)?.visualFocus ?? control.activeFocus

    anchors.fill: parent
    anchors.margins: -4
    z: 10
    visible: shown
    color: Theme.none
    radius: ((parent as Rectangle)?.radius ?? Theme.controlRadius) + 4
    border.width: 2
    border.color: Theme.accent
}
