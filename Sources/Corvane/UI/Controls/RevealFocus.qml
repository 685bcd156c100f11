import Corvane.Controls
import QtQuick
import QtQuick.Window

/// Scrolls a view to the item that gets the focus.
Item {
    id: watch

    required property Flickable view

    visible: false

    function reveal(item: Item) {
        let above = item;
        while (above && above !== view.contentItem)
            above = above.parent;
        if (!above)
            return;
        const top = item.mapToItem(view.contentItem, 0, 0).y - Theme.medium;
        const bottom = top + item.height + Theme.medium * 2;
        if (top < view.contentY)
            view.contentY = Math.max(0, top);
        else if (bottom > view.contentY + view.height)
            view.contentY = Math.min(bottom - view.height, view.contentHeight - view.height);
    }

    Connections {
        target: watch.Window.window
        function onActiveFocusItemChanged() {
            watch.reveal(watch.Window.window.activeFocusItem);
        }
    }
}
