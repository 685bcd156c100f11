import Corvane.Controls
import QtQuick

/// The program's logo: two overlapping speech bubbles.
Rectangle {
    id: logo

    property int size: 40

    width: size
    height: size
    radius: size * 0.26
    color: Theme.accent
    Accessible.ignored: true

    Icon {
        anchors.centerIn: parent
        name: "corvane"
        size: Math.round(logo.size * 0.64)
        color: Theme.accentInk
    }
}
