import Corvane.Controls
import QtQuick

/// Shown instead of empty content: an icon, a title, a sentence, and one action.
Column {
    id: empty

    property string icon
    property string title
    property string detail
    property string action

    signal acted

    spacing: Theme.small
    Accessible.role: Accessible.StaticText
    Accessible.name: detail ? title + ". " + detail : title

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: empty.icon !== ""
        width: 56
        height: 56
        radius: 28
        color: Theme.raised
        Icon {
            anchors.centerIn: parent
            name: empty.icon
            size: 24
            color: Theme.faint
        }
    }
    Item { width: 1; height: Theme.tight }
    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        maximumLineCount: 3 // it may quote what was typed
        elide: Text.ElideRight
        text: empty.title
        font.pixelSize: Theme.title
        font.weight: Theme.strong
        Accessible.ignored: true
    }
    Label {
        width: parent.width
        visible: text !== ""
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        lineHeight: 1.3
        text: empty.detail
        color: Theme.soft
        Accessible.ignored: true
    }
    Item { width: 1; height: Theme.small; visible: button.visible }
    Button {
        id: button
        anchors.horizontalCenter: parent.horizontalCenter
        visible: empty.action !== ""
        text: empty.action
        onClicked: empty.acted()
    }
}
