import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// A message that the search found. The first of a person shows who they are, with the others below it.
FoundButton {
    id: row

    required property int index
    required property messageHit hit

    implicitHeight: hit.leads ? 52 : 28
    Accessible.name: hit.spoken

    contentItem: Item {
        Avatar {
            id: face
            x: Theme.large + 4
            y: 10
            visible: row.hit.leads
            width: 32
            hue: row.hit.hue
            initials: row.hit.initials
            photo: row.hit.avatarPath
            channel: row.hit.platform
        }
        Label {
            anchors.left: said.left
            anchors.right: time.left
            anchors.rightMargin: Theme.small
            y: 8
            visible: row.hit.leads
            text: row.hit.name
            Accessible.ignored: true
        }
        Label {
            id: time
            anchors.right: parent.right
            anchors.rightMargin: Theme.large
            y: row.hit.leads ? 9 : 7
            text: row.hit.timeText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            id: said
            anchors.left: face.right
            anchors.leftMargin: Theme.medium + 4
            anchors.right: row.hit.leads ? parent.right : time.left
            anchors.rightMargin: row.hit.leads ? Theme.large : Theme.small
            y: row.hit.leads ? 27 : 5
            text: row.hit.snippet // escaped by the view model: what people write is never read as markup
            textFormat: Text.StyledText
            color: Theme.soft
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
