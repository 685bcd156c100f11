import QtQuick
import QtQuick.Templates as T
import Corvane

/// A message that the search found.
T.AbstractButton {
    id: row

    required property string id
    required property string name
    required property string platform
    required property string snippet
    required property string timeText
    required property string initials
    required property int hue
    required property string spoken

    implicitHeight: 52
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
            anchors.verticalCenter: parent.verticalCenter
            width: 32
            hue: row.hue
            initials: row.initials
            channel: row.platform
        }
        Label {
            id: title
            anchors.left: face.right
            anchors.leftMargin: Theme.medium + 4
            anchors.right: time.left
            anchors.rightMargin: Theme.small
            y: 8
            text: row.name
            font.pixelSize: Theme.body
            Accessible.ignored: true
        }
        Label {
            id: time
            anchors.right: parent.right
            anchors.rightMargin: Theme.large
            anchors.baseline: title.baseline
            text: row.timeText
            font.pixelSize: Theme.meta
            color: Theme.faint
            Accessible.ignored: true
        }
        Label {
            anchors.left: title.left
            anchors.right: parent.right
            anchors.rightMargin: Theme.large
            y: 27
            text: row.snippet
            color: Theme.soft
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
