import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What the assistant has to say about the open thread, between the thread and the composer.
FocusScope {
    id: panels

    required property InboxView inbox
    required property real room ///< the height that the thread can spare

    readonly property int ready: (summary.ready ? 1 : 0) + (draft.ready ? 1 : 0)
    /// The height for the text of each card beside its heading and its buttons.
    readonly property real textRoom: Math.min(240, Math.max(72, room / Math.max(1, ready) - 100))

    signal emptied ///< the focused part disappeared
    signal settingsAsked

    /// One level back: closes the focused part.
    function back() {
        let at = Window.activeFocusItem;
        while (at && at !== summary && at !== draft)
            at = at.parent;
        if (at)
            (at === summary ? summary : draft).dismiss();
        else
            emptied();
    }

    onActiveFocusChanged: {
        const at = Window.activeFocusItem;
        if (!activeFocus || (at !== panels && at.visible))
            return;
        if (draft.visible)
            draft.enter();
        else if (summary.visible)
            summary.enter();
        else
            nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason);
    }
    implicitHeight: content.implicitHeight > 0 ? content.implicitHeight + Theme.medium : 0
    enabled: implicitHeight > 0
    visible: inbox.person.selectedId !== ""

    Column {
        id: content
        x: Theme.large
        width: parent.width - Theme.large * 2
        spacing: Theme.small

        GenerationCard {
            id: summary
            objectName: "summary"
            width: parent.width
            panel: panels.inbox.reply.summary
            name: qsTr("Summary of the thread")
            room: panels.textRoom
            onDismissed: panels.emptied()
            onSettingsAsked: panels.settingsAsked()
            Text {
                objectName: "summary.text"
                width: parent.width
                text: panels.inbox.reply.summary.html
                textFormat: Text.StyledText
                wrapMode: Text.Wrap
                color: Theme.text
                linkColor: Theme.accent
                font.pixelSize: Theme.body
                Accessible.name: panels.inbox.reply.summary.text
                onLinkActivated: link => panels.inbox.person.jumpTo(link)
                HoverHandler {
                    cursorShape: parent.hoveredLink ? Qt.PointingHandCursor : Qt.ArrowCursor
                }
            }
            Citations {
                width: parent.width
                person: panels.inbox.person
                citations: panels.inbox.reply.summary.citations
            }
            Label {
                width: parent.width
                text: panels.inbox.reply.summary.modelName
                font.pixelSize: Theme.meta
                color: Theme.soft
            }
        }
        DraftPreview {
            id: draft
            width: parent.width
            inbox: panels.inbox
            room: panels.textRoom
            onDismissed: panels.emptied()
            onSettingsAsked: panels.settingsAsked()
        }
        Banner {
            objectName: "draftTaken"
            width: parent.width
            readonly property Composer composer: panels.inbox.reply.composer
            visible: composer.canUndo && composer.canSend && panels.inbox.reply.assistant.state === "idle"
            text: qsTr("The text is in the composer.")
            action: qsTr("Undo")
            onActed: composer.undo()
        }
    }
}
