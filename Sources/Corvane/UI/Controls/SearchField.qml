import Corvane.Controls
import QtQuick

/// A field with a search icon and a clear button; Down and Return lead to the results.
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
