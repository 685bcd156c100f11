import Corvane.Controls
import QtQuick

/// A field with a lens, a way to clear it, and Down or Return leading on to what was found.
TextField {
    id: control

    signal cleared
    signal leave

    icon: "edit-find"
    rightPadding: clear.visible ? 32 : Theme.medium
    Accessible.searchEdit: true
    Keys.onDownPressed: leave()
    Keys.onReturnPressed: leave()
    Keys.onEscapePressed: event => {
        if (length)
            cleared();
        else
            event.accepted = false;
    }

    IconButton {
        id: clear
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        visible: control.length > 0
        size: 28
        iconSize: 14
        icon.name: "window-close"
        text: qsTr("Clear search")
        onClicked: control.cleared()
    }
}
