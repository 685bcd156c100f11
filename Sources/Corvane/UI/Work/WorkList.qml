import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Items in a plain list; Return or a press opens one.
FocusScope {
    id: view

    property alias model: list.model
    property string emptyText
    property string name

    signal opened(id: string)

    ListView {
        id: list
        anchors.fill: parent
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        Accessible.role: Accessible.List
        Accessible.name: view.name
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onReturnPressed: if (currentItem) view.opened((currentItem as ItemLine).item.id)

        KeyboardFocus { id: keyboard; target: list }

        delegate: ItemLine {
            width: ListView.view.width
            ringed: ListView.isCurrentItem && keyboard.shown
            onClicked: {
                list.currentIndex = index;
                view.opened(item.id);
            }
        }
    }
    Label {
        width: Math.min(parent.width, 480)
        visible: view.emptyText !== ""
        wrapMode: Text.Wrap
        text: view.emptyText
        color: Theme.faint
    }
}
