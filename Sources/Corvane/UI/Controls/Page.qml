import QtQuick
import Corvane.Controls

/// A screen under the hub bar. F6 walks over its panes and the bar, in reading order.
FocusScope {
    id: page

    required property Item hubBar
    property WindowLayout layout ///< the user's pane widths
    property list<Item> panes ///< focus scopes, from left to right; hidden ones are skipped

    signal leave ///< back to the hub
    signal openSettings(string section) ///< empty for the last one

    function run(command: string) {
        if (command === "nextPane")
            stepPane(1);
        else if (command === "previousPane")
            stepPane(-1);
        else
            act(command);
    }

    /// Handles a command of the table on this page.
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
