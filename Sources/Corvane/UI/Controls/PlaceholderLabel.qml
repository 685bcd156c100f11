import Corvane.Controls
import QtQuick

/// The placeholder of an empty field. It fills the field and uses its padding.
Label {
    required property bool shown

    anchors.fill: parent
    verticalAlignment: Text.AlignVCenter
    visible: shown
    color: Theme.faint
    Accessible.ignored: true
}
