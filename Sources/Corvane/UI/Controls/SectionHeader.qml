import Corvane.Controls
import QtQuick

/// The name of what follows.
Label {
    font.pixelSize: Theme.meta
    font.weight: Theme.strong
    color: Theme.soft
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
