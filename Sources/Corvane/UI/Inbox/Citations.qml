import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// The messages that a text of the assistant is based on; each is one click away.
Flow {
    id: line

    required property OpenPerson person
    required property list<citation> citations

    spacing: Theme.tight
    visible: citations.length > 0

    Label {
        height: 24
        verticalAlignment: Text.AlignVCenter
        text: qsTr("Based on")
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    Repeater {
        model: line.citations
        Chip {
            id: chip
            required property citation modelData
            objectName: "citation." + modelData.label
            text: modelData.label
            Accessible.name: qsTr("Show the message %1: %2").arg(modelData.label).arg(modelData.excerpt)
            onClicked: line.person.jumpTo(modelData.messageId)
            Tooltip {
                text: chip.modelData.excerpt.slice(0, 120)
                shown: chip.hovered
                y: -implicitHeight - Theme.tight
            }
        }
    }
}
