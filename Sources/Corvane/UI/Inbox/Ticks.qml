import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// How far a message got, as ticks; nothing if there are none to show.
Icon {
    required property string ticks

    visible: name !== ""
    name: ticks === "single" ? "tick" : ticks === "double" || ticks === "read" ? "tick-double" : ""
    color: ticks === "read" ? Theme.accent : Theme.faint
}
