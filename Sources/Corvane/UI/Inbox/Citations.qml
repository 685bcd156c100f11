import QtQuick
import Corvane

/// The messages that a text of the assistant rests on; each is one press away.
Flow {
    id: line

    required property QtObject inbox
    required property var citations ///< of {label, messageId, excerpt}

    spacing: Theme.tight
    visible: citations.length > 0

    Label {
        height: 24
        verticalAlignment: Text.AlignVCenter
        text: qsTr("Rests on")
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    Repeater {
        model: line.citations
        Chip {
            id: citation
            required property var modelData
            objectName: "citation." + modelData.label
            text: modelData.label
            Accessible.name: qsTr("Show the message %1: %2").arg(modelData.label).arg(modelData.excerpt)
            onClicked: line.inbox.jumpTo(modelData.messageId)
            Tooltip {
                text: citation.modelData.excerpt.slice(0, 120)
                shown: citation.hovered
                y: -implicitHeight - Theme.tight
            }
        }
    }
}
