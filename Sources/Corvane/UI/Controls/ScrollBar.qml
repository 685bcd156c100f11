import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A thin handle that shows while it is needed.
T.ScrollBar {
    id: control

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.08
    visible: size < 1
    Accessible.ignored: true

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Theme.faint
        opacity: control.pressed ? 0.9 : control.hovered ? 0.7 : control.active ? 0.45 : 0
        Behavior on opacity { NumberAnimation { duration: Theme.pane } }
    }
}
