import QtQuick
import Corvane.Controls

/// A screen under the hub bar. F6 walks over its panes and the bar, in reading order.
FocusScope {
    id: page

    required property Item hubBar
    property WindowLayout layout ///< what the person made of the panes
    property list<Item> panes ///< focus scopes, from left to right; hidden ones are passed over

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
        const shown = [hubBar];
        for (let i = 0; i < panes.length; ++i) {
            if (panes[i].visible && panes[i].enabled)
                shown.push(panes[i]);
        }
        const current = shown.findIndex(pane => pane.activeFocus);
        shown[(current + step + shown.length) % shown.length].forceActiveFocus(Qt.TabFocusReason);
    }
}
