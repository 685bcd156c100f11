import QtQuick
import Corvane

/// What the assistant has to say about the open thread, between the thread and the composer.
FocusScope {
    id: panels

    required property QtObject inbox

    implicitHeight: content.implicitHeight > 0 ? content.implicitHeight + Theme.medium : 0
    enabled: implicitHeight > 0
    visible: inbox.selectedId !== ""

    Column {
        id: content
        x: Theme.large
        width: parent.width - Theme.large * 2
        spacing: Theme.small

        GenerationCard {
            id: summary
            objectName: "summary"
            width: parent.width
            panel: panels.inbox.summary
            name: qsTr("Summary of the thread")
            Text {
                objectName: "summary.text"
                width: parent.width
                text: panels.inbox.summary.html
                textFormat: Text.StyledText
                wrapMode: Text.Wrap
                color: Theme.text
                linkColor: Theme.accent
                font.pixelSize: Theme.body
                Accessible.name: panels.inbox.summary.text
                onLinkActivated: link => panels.inbox.jumpTo(link)
                HoverHandler {
                    cursorShape: parent.hoveredLink ? Qt.PointingHandCursor : Qt.ArrowCursor
                }
            }
            Label {
                width: parent.width
                text: panels.inbox.summary.modelName
                font.pixelSize: Theme.meta
                color: Theme.soft
            }
        }
        DraftPreview {
            width: parent.width
            inbox: panels.inbox
        }
        Banner {
            objectName: "draftTaken"
            width: parent.width
            visible: panels.inbox.composer.canUndo && panels.inbox.assistant.state === "idle"
            text: qsTr("The draft stands in the composer.")
            action: qsTr("Undo")
            onActed: panels.inbox.composer.undo()
        }
    }
}
