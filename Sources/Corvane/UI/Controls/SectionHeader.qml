import Corvane.Controls
import QtQuick

/// The heading of a section.
Label {
    font.pixelSize: Theme.meta
    font.weight: Theme.strong
    color: Theme.soft
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
