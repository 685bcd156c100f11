import QtQuick
import QtQuick.Templates as T
import Corvane

/// A message that the search found. The first of a person shows who they are, the others stand under it.
T.AbstractButton {
    id: row

    required property string id
    required property string name
    required property string platform
    required property string snippet
    required property string timeText
    required property bool leads
    required property string avatarPath
    required property string initials
    required property int hue
    required property string spoken

    implicitHeight: leads ? 52 : 28
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.name: spoken
    Keys.onReturnPressed: clicked()
    Keys.onDownPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    background: Rectangle {
        x: Theme.small
        width: row.width - Theme.small * 2
        radius: Theme.cardRadius
        color: row.hovered ? Theme.raised : Theme.none
        border.width: row.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Avatar {
            id: face
            x: Theme.large + 4
            y: 10
            visible: row.leads
            width: 32
            hue: row.hue
            initials: row.initials
            photo: row.avatarPath
            channel: row.platform
        }
        Label {
            anchors.left: said.left
            anchors.right: time.left
            anchors.rightMargin: Theme.small
            y: 8
            visible: row.leads
            text: row.name
            Accessible.ignored: true
        }
        Label {
            id: time
            anchors.right: parent.right
            anchors.rightMargin: Theme.large
            y: row.leads ? 9 : 7
            text: row.timeText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            id: said
            anchors.left: face.right
            anchors.leftMargin: Theme.medium + 4
            anchors.right: row.leads ? parent.right : time.left
            anchors.rightMargin: row.leads ? Theme.large : Theme.small
            y: row.leads ? 27 : 5
            text: row.snippet // escaped by the view model: what people write is never read as markup
            textFormat: Text.StyledText
            color: Theme.soft
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
