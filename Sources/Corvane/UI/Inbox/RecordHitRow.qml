import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A call, note, deal, task, event or work record that the search found. The first of its group has the group's name
/// above, the last of a shortened one leads to the others.
Column {
    id: row

    required property recordHit record

    signal opened
    signal moreAsked

    SectionHeader {
        visible: text !== ""
        leftPadding: Theme.large
        topPadding: Theme.large
        bottomPadding: Theme.tight
        text: row.record.heading
    }
    FoundButton {
        objectName: "inbox.record." + row.record.id
        width: row.width
        implicitHeight: row.record.snippet ? 52 : 36
        enabled: row.record.opens
        Accessible.name: row.record.spoken
        onClicked: row.opened()

        contentItem: Item {
            Icon {
                id: mark
                x: Theme.large + 12
                y: 10
                name: row.record.icon
            }
            Label {
                anchors.left: mark.right
                anchors.leftMargin: Theme.medium + 12
                anchors.right: time.left
                anchors.rightMargin: Theme.small
                y: 8
                text: row.record.title // escaped by the view model, as is the snippet
                textFormat: Text.StyledText
                Accessible.ignored: true
            }
            Label {
                id: time
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                y: 9
                text: row.record.timeText
                font.pixelSize: Theme.meta
                color: Theme.faint
                Accessible.ignored: true
            }
            Label {
                anchors.left: mark.right
                anchors.leftMargin: Theme.medium + 12
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                y: 27
                visible: text !== ""
                text: row.record.snippet
                textFormat: Text.StyledText
                color: Theme.soft
                Accessible.ignored: true
            }
        }
    }
    PaneLink {
        x: 68 - Theme.small
        objectName: "inbox.more." + row.record.id
        visible: text !== ""
        text: row.record.more
        onClicked: row.moreAsked()
    }
}
