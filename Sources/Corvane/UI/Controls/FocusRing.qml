import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// The mark of the keyboard's place: two pixels of accent outside the shape of its parent.
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
