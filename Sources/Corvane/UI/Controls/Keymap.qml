pragma Singleton
import QtQuick

/// Every key of the window in one table: the shortcuts are made from it, and the list under F1 shows it.
/// An entry without `sequences` is a key that a hub's own shortcut or the focused list answers.
QtObject {
    readonly property string everywhere: qsTr("Everywhere")
    readonly property string list: qsTr("In the list")
    readonly property string gate: qsTr("In Approvals")
    readonly property string thread: qsTr("This conversation")
    readonly property string message: qsTr("On a message")
    readonly property string terminal: qsTr("In a terminal")

    readonly property var entries: [
        { section: everywhere, command: "palette", label: qsTr("Search and commands"), keys: "Ctrl+K", sequences: ["Ctrl+K"] },
        { section: everywhere, command: "search", label: qsTr("Search the inbox"), keys: "Ctrl+F", sequences: ["Ctrl+F"] },
        { section: everywhere, command: "hub", label: qsTr("Go to a hub"), keys: "Ctrl+1 … Ctrl+6" },
        { section: everywhere, command: "settings", label: qsTr("Settings"), keys: "Ctrl+,", sequences: ["Ctrl+,"] },
        { section: everywhere, command: "approvals", label: qsTr("Approvals"), keys: "Ctrl+Shift+A", sequences: ["Ctrl+Shift+A"] },
        { section: everywhere, command: "newMessage", label: qsTr("New message"), keys: "Ctrl+N", sequences: ["Ctrl+N"] },
        { section: everywhere, command: "shortcuts", label: qsTr("This list"), keys: "F1 or ?", sequences: ["F1", "?"] },
        { section: everywhere, command: "nextPane", label: qsTr("Next pane"), keys: "F6", sequences: ["F6"] },
        { section: everywhere, command: "previousPane", label: qsTr("Previous pane"), keys: "Shift+F6", sequences: ["Shift+F6"] },
        { section: everywhere, command: "quit", label: qsTr("Quit"), keys: "Ctrl+Q" },
        { section: everywhere, command: "back", label: qsTr("Back one level"), keys: "Esc", sequences: ["Esc"] },
        { section: list, command: "next", label: qsTr("Next conversation"), keys: "Down or J", sequences: ["J"] },
        { section: list, command: "previous", label: qsTr("Previous conversation"), keys: "Up or K", sequences: ["K"] },
        { section: list, command: "open", label: qsTr("Open the thread"), keys: "Return" },
        { section: list, command: "check", label: qsTr("Pick for a common action"), keys: "Space" },
        { section: list, command: "checkAll", label: qsTr("Pick all"), keys: "Ctrl+A", sequences: ["Ctrl+A"] },
        { section: thread, command: "reply", label: qsTr("Reply"), keys: "R", sequences: ["R"] },
        { section: thread, command: "send", label: qsTr("Send what is typed"), keys: "Ctrl+Return" },
        { section: thread, command: "assistant", label: qsTr("Ask the assistant"), keys: "Ctrl+J", sequences: ["Ctrl+J"] },
        { section: thread, command: "unread", label: qsTr("Mark as unread"), keys: "U", sequences: ["U"] },
        { section: thread, command: "archive", label: qsTr("Archive or unarchive"), keys: "E", sequences: ["E"] },
        { section: thread, command: "undo", label: qsTr("Undo an archive or a deletion"), keys: "Ctrl+Z", sequences: ["Ctrl+Z"] },
        { section: thread, command: "mute", label: qsTr("Mute or unmute"), keys: "M", sequences: ["M"] },
        { section: thread, command: "contactPane", label: qsTr("Show or hide the contact"), keys: "Ctrl+I", sequences: ["Ctrl+I"] },
        { section: message, command: "messageMenu", label: qsTr("What can be done with it"), keys: "Return" },
        { section: message, command: "copy", label: qsTr("Copy its text"), keys: "Ctrl+C" },
        { section: message, command: "play", label: qsTr("Play or hold a voice note"), keys: "Space" },
        { section: message, command: "skip", label: qsTr("Five seconds back or on"), keys: "Left or Right" },
        { section: message, command: "page", label: qsTr("A page up or down"), keys: "PgUp or PgDown" },
        { section: message, command: "deleteLocal", label: qsTr("Delete the local copy"), keys: "Del" },
        { section: gate, command: "approve", label: qsTr("Approve, retry or apply"), keys: "Ctrl+Return" },
        { section: gate, command: "undoApproval", label: qsTr("Undo within five seconds"), keys: "Ctrl+Z" },
        { section: gate, command: "editDraft", label: qsTr("Edit a message"), keys: "F2" },
        { section: gate, command: "reject", label: qsTr("Reject"), keys: "Del" },
        { section: gate, command: "wholeText", label: qsTr("Show a long text whole"), keys: "Space" },
        { section: terminal, command: "newTerminal", label: qsTr("New terminal"), keys: "Ctrl+Shift+T", sequences: ["Ctrl+Shift+T"] },
        { section: terminal, command: "closeTerminal", label: qsTr("Close it"), keys: "Ctrl+Shift+W", sequences: ["Ctrl+Shift+W"] },
        { section: terminal, command: "nextTerminal", label: qsTr("Next terminal"), keys: "Ctrl+PgDown", sequences: ["Ctrl+PgDown", "Ctrl+Tab"] },
        { section: terminal, command: "previousTerminal", label: qsTr("Previous terminal"), keys: "Ctrl+PgUp", sequences: ["Ctrl+PgUp", "Ctrl+Shift+Tab"] },
        { section: terminal, command: "findInTerminal", label: qsTr("Find"), keys: "Ctrl+Shift+F", sequences: ["Ctrl+Shift+F"] },
        { section: terminal, command: "copyFromTerminal", label: qsTr("Copy"), keys: "Ctrl+Shift+C", sequences: ["Ctrl+Shift+C"] },
        { section: terminal, command: "pasteIntoTerminal", label: qsTr("Paste"), keys: "Ctrl+Shift+V", sequences: ["Ctrl+Shift+V"] },
        { section: terminal, command: "largerType", label: qsTr("Larger type"), keys: "Ctrl++", sequences: ["Ctrl++", "Ctrl+="] },
        { section: terminal, command: "smallerType", label: qsTr("Smaller type"), keys: "Ctrl+-", sequences: ["Ctrl+-"] },
        { section: terminal, command: "usualType", label: qsTr("Usual type"), keys: "Ctrl+0", sequences: ["Ctrl+0"] },
        { section: terminal, command: "leaveTerminal", label: qsTr("Out of the terminal"), keys: "Shift+F6" }
    ]

    function keysOf(command: string): string {
        return entries.find(entry => entry.command === command)?.keys ?? "";
    }
}
