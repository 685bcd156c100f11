import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What was just done to a conversation or a message, and the way back.
Toast {
    required property ListActions actions

    undoName: "inbox.undo"
    text: actions.undoText
    onUndone: actions.undo()
    onDismissed: actions.dismissUndo()
}
