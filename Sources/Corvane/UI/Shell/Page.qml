import QtQuick
import Corvane

/// A screen under the hub bar. F6 walks over its panes and the bar, in reading order.
FocusScope {
    id: page

    required property Item hubBar
    property QtObject layout: null ///< what the person made of the panes
    property var panes: [] ///< focus scopes, from left to right; hidden ones are passed over

    signal leave ///< back to the hub
    signal openHub(string hub)
    signal openSettings(string section) ///< empty for the one that was open last

    function run(command: string) {
        if (command === "nextPane")
            stepPane(1);
        else if (command === "previousPane")
            stepPane(-1);
        else
            act(command);
    }

    /// What this screen makes of a command of the keymap.
    function act(command: string) {}

    function stepPane(step: int) {
        const shown = [hubBar, ...panes].filter(pane => pane.visible && pane.enabled);
        const current = shown.findIndex(pane => pane.activeFocus);
        shown[(current + step + shown.length) % shown.length].forceActiveFocus(Qt.TabFocusReason);
    }
}
