import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Panel

/// A line of the panel that opens its subject.
T.AbstractButton {
    id: line

    property string sign
    property string more ///< secondary text after the text
    property string count

    implicitHeight: 36
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.name: [text, count ? qsTr("%1 unread").arg(count) : "", more].filter(part => part !== "").join(", ")
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onDownPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)

    background: Rectangle {
        radius: Theme.controlRadius
        color: line.hovered ? Theme.raised : Theme.none
        FocusRing { control: line; anchors.margins: -1 }
    }
    contentItem: Item {
        Icon {
            id: sign
            x: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            name: line.sign
            color: Theme.soft
        }
        Label {
            id: words
            anchors.left: sign.right
            anchors.leftMargin: Theme.medium
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, badge.x - x - Theme.small, line.more ? parent.width * 0.5 : parent.width)
            text: line.text
            font.weight: line.count ? Theme.strong : Theme.regular
        }
        Label {
            anchors.left: words.right
            anchors.leftMargin: Theme.small
            anchors.right: badge.left
            anchors.rightMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: line.more
            color: Theme.soft
        }
        Badge {
            id: badge
            x: parent.width - (visible ? width + Theme.small : 0)
            anchors.verticalCenter: parent.verticalCenter
            text: line.count
        }
    }
}
