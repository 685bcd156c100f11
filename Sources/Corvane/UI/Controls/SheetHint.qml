import QtQuick
import Corvane.Controls

/// What a sheet asks for and where it comes from, in Markdown of our own.
Label {
    width: parent ? parent.width : 0
    visible: text !== ""
    wrapMode: Text.Wrap
    lineHeight: 1.3
    textFormat: Text.MarkdownText
    elide: Text.ElideNone
    color: Theme.soft
}
