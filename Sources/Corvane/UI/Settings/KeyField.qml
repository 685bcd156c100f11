import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Shows a global shortcut, and records another one when it is pressed.
Button {
    required property HotKey hotKey

    text: checked ? qsTr("Press the new key…") : hotKey.keys
    checkable: true
    Accessible.name: hotKey.label + ", " + text
    onActiveFocusChanged: if (!activeFocus) checked = false
    Keys.onPressed: event => {
        if (!checked)
            return;
        event.accepted = true;
        if (event.key === Qt.Key_Escape || hotKey.choose(event.key, event.modifiers))
            checked = false;
    }
}
