import Corvane.Controls
import QtQuick

/// Whether a list should show where the keyboard is: it has the focus, and a key brought it there or moved in it.
Item {
    id: watch

    required property Item target
    readonly property bool shown: target.activeFocus && byKey
    property bool byKey: false

    visible: false

    Connections {
        target: watch.target
        function onActiveFocusChanged() {
            if (watch.target.activeFocus)
                watch.byKey = WindowTools.lastInputWasKey;
        }
    }
    Connections {
        target: WindowTools
        function onLastInputWasKeyChanged() { watch.byKey = WindowTools.lastInputWasKey; }
    }
}
