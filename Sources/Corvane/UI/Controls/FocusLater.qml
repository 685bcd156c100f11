import QtQuick

/// Moves the focus to an item after the current event is handled, if it is still inside `scope` then. In a
/// delegate Qt.callLater would run after the delegate was removed, and crash.
Timer {
    required property Item scope
    property Item target

    function move(to: Item) {
        target = to;
        restart();
    }

    interval: 0
    onTriggered: if (scope.activeFocus && target && target.visible) target.forceActiveFocus(Qt.TabFocusReason)
}
