import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A line of a section: its text, secondary text below, a mark in front, and actions on the right.
Item {
    id: line

    // From a row of the view model
    required property paneRow entry

    default property alias actions: side.data
    property alias lead: front.data ///< replaces the mark
    property bool strong: false
    property bool foldable: true ///< a long text can be expanded
    property int lines: 4
    readonly property string under: [entry.label, entry.detail, entry.timeText].filter(word => word).join(" · ")
    property bool whole: false ///< shows all of a long text

    width: parent?.width ?? 0
    height: Math.max(words.height, side.height) + Theme.small
    Accessible.role: Accessible.ListItem
    Accessible.name: [entry.text, under].filter(word => word).join(", ")

    Item {
        id: front
        readonly property bool taken: children.length > 1
        width: taken ? 28 : mark.name ? mark.size + Theme.small : 0
        height: 18
        y: Theme.tight
        Icon {
            id: mark
            y: 2
            visible: !front.taken
            name: line.entry.channel ? "channel-" + line.entry.channel.toLowerCase() : line.entry.icon
            size: 14
            color: Theme.faint
        }
    }
    Column {
        id: words
        anchors.left: front.right
        anchors.right: side.left
        y: Theme.tight
        spacing: 1

        Label {
            id: said
            width: parent.width
            text: line.entry.text
            font.weight: line.strong ? Theme.strong : Theme.regular
            wrapMode: Text.Wrap
            maximumLineCount: line.whole ? 10000 : line.lines
            lineHeight: 1.15
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: line.under
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        PaneLink {
            x: -Theme.small
            visible: line.foldable && (said.truncated || line.whole)
            text: line.whole ? qsTr("Show less") : qsTr("Show more")
            subject: line.entry.text.slice(0, 40)
            onClicked: line.whole = !line.whole
        }
    }
    Row {
        id: side
        anchors.right: parent.right
        anchors.rightMargin: children.length ? -Theme.small : 0
        y: 1
        leftPadding: children.length ? Theme.tight : 0
    }
}
