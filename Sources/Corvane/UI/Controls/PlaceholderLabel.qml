import Corvane.Controls
import QtQuick

/// What an empty field asks for. It fills the field, whose padding it is given.
Label {
    required property bool shown

    anchors.fill: parent
    verticalAlignment: Text.AlignVCenter
    visible: shown
    color: Theme.faint
    Accessible.ignored: true
}
