import Corvane
import QtQuick

/// The mark of the keyboard's place: two pixels of accent outside the shape of its parent.
Rectangle {
    required property Item control
    property bool shown: control.visualFocus === undefined ? control.activeFocus : control.visualFocus

    anchors.fill: parent
    anchors.margins: -4
    z: 10
    visible: shown
    color: Theme.none
    radius: (parent.radius ?? Theme.controlRadius) + 4
    border.width: 2
    border.color: Theme.accent
}
