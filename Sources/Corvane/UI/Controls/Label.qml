import Corvane.Controls
import QtQuick

/// Plain text in the window's type; what people write is never read as markup.
Text {
    color: Theme.text
    font.pixelSize: Theme.body
    elide: Text.ElideRight
    textFormat: Text.PlainText
    // Keeps names left-aligned in any script.
    horizontalAlignment: Text.AlignLeft
}
