import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The delivery state of a message, as ticks; empty if there is none.
Icon {
    required property string ticks

    visible: name !== ""
    name: ticks === "single" ? "tick" : ticks === "double" || ticks === "read" ? "tick-double" : ""
    color: ticks === "read" ? Theme.accent : Theme.faint
}
