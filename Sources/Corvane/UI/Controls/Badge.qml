import Corvane.Controls
import QtQuick

/// A count that needs attention; hidden without a text.
Rectangle {
    property alias text: count.text
    property bool quiet: false

    implicitWidth: Math.max(18, count.implicitWidth + 10)
    implicitHeight: 18
    visible: text !== ""
    radius: 9
    color: quiet ? Theme.raised : Theme.accent
    Accessible.ignored: true

    Label {
        id: count
        anchors.centerIn: parent
        font.pixelSize: Theme.meta
        font.weight: Theme.strong
        color: parent.quiet ? Theme.soft : Theme.accentInk
    }
}
