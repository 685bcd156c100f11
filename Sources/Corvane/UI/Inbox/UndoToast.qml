import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What was just done to a conversation or a message, and the way back.
Toast {
    id: toast

    required property InboxView inbox

    undoName: "inbox.undo"
    text: inbox.undoText
    onUndone: inbox.undo()
    onDismissed: inbox.dismissUndo()
}
