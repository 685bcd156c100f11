import QtQuick
import Corvane.Controls

/// A hint about what a sheet needs and where to find it, in our own Markdown.
Label {
    width: parent ? parent.width : 0
    visible: text !== ""
    wrapMode: Text.Wrap
    lineHeight: 1.3
    textFormat: Text.MarkdownText
    elide: Text.ElideNone
    color: Theme.soft
}
