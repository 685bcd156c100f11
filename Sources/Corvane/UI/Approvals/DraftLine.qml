import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Controls

/// One draft of the bar: a line that expands to the whole text and its actions.
Column {
    id: line

    required property PendingDraftsView drafts
    required property int index
    required property pendingDraft draft
    required property bool held ///< already gone, shown a moment longer

    readonly property bool canOpen: draft.canDecide || draft.actions.length > 0
    readonly property bool asking: drafts.confirmDraft === draft.id
    readonly property DraftEdit editor: drafts.editor
    readonly property bool editing: editor.draftId === draft.id
    readonly property bool armed: draft.secondsLeft > 0
    property bool open: false

    signal toggled
    signal decided ///< emitted before the action, which may remove the line

    enabled: !held
    opacity: held ? 0.6 : 1

    function focusHead() {
        head.forceActiveFocus(Qt.TabFocusReason);
    }

    // Keeps the focus in the line when its buttons change.
    FocusLater { id: focusLater; scope: inner }
    onAskingChanged: focusLater.move(asking ? send : approve)
    onEditingChanged: if (!editing) focusLater.move(approve)

    T.AbstractButton {
        id: head
        objectName: "draft.line"
        width: line.width
        height: 40
        focus: line.index === 0
        hoverEnabled: line.canOpen && !line.editing
        focusPolicy: Qt.StrongFocus
        text: line.draft.title
        Accessible.role: Accessible.Button
        Accessible.name: line.draft.title + ", " + line.draft.statusLabel + ": " + line.draft.preview
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        onClicked: {
            if (!line.canOpen || line.editing)
                return;
            if (line.asking)
                line.drafts.cancelConfirm();
            line.toggled();
        }

        background: Rectangle {
            color: head.hovered ? Theme.raised : Theme.none
            FocusRing { control: head; anchors.margins: 2 }
        }
        contentItem: Item {
            ChannelMark {
                id: mark
                x: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                channel: line.draft.platform
            }
            Label {
                id: title
                anchors.left: mark.right
                anchors.leftMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, line.open ? state.x - x - Theme.small : parent.width * 0.55)
                text: line.draft.title
                font.weight: Theme.strong
            }
            Label {
                anchors.left: title.right
                anchors.leftMargin: Theme.small
                anchors.right: state.left
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                visible: !line.open
                text: line.draft.preview
                color: Theme.soft
            }
            Label {
                id: state
                anchors.right: line.armed ? undo.left : chevron.left
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                text: line.armed ? qsTr("%1 %2 s").arg(line.draft.statusLabel).arg(line.draft.secondsLeft) : line.draft.stateText
                font.pixelSize: Theme.meta
                color: line.armed || !line.draft.canDecide ? Theme.soft : line.draft.status === "failed" ? Theme.bad : line.draft.status === "pending" ? Theme.warn : Theme.soft
            }
            Button {
                id: undo
                objectName: "draft.undo"
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                implicitHeight: 28
                visible: line.armed
                text: qsTr("Undo")
                Accessible.name: text + ": " + line.draft.title
                onClicked: line.drafts.undo(line.draft.id)
            }
            Icon {
                id: chevron
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                visible: line.canOpen && !line.editing
                width: visible ? size : 0
                name: line.open ? "go-up" : "go-down"
                size: 14
            }
        }
    }
    FocusScope {
        id: inner
        x: Theme.large
        width: line.width - Theme.large * 2
        height: parts.implicitHeight
        visible: line.open

        Column {
            id: parts
            width: parent.width
            spacing: Theme.small
            topPadding: Theme.small
            bottomPadding: Theme.medium

            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: line.draft.failureReason
                color: line.draft.canDecide ? Theme.bad : Theme.soft
            }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: line.draft.subject
                font.weight: Theme.strong
            }
            Label {
                width: parent.width
                visible: !line.editing && text !== ""
                wrapMode: Text.Wrap
                lineHeight: 1.3
                text: line.open ? line.draft.body : "" // laying out a very long text takes time
            }
            DraftFiles {
                width: parent.width
                files: line.draft.files
            }
            TextBox {
                id: words
                objectName: "draft.words"
                width: parent.width
                height: implicitHeight
                visible: line.editing
                readOnly: line.editor.lost
                placeholderText: qsTr("Message")
                onVisibleChanged: if (visible) text = line.editor.text
                onTextChanged: if (visible) line.editor.text = text
                onSubmitted: line.editor.save()
            }
            Label {
                objectName: "draft.problem"
                width: parent.width
                visible: line.editing && text !== ""
                wrapMode: Text.Wrap
                text: line.editor.problem
                color: Theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            Row {
                spacing: Theme.small
                visible: line.draft.actions.length > 0
                Repeater {
                    model: line.draft.actions
                    Button {
                        required property draftAction modelData
                        objectName: "draft." + modelData.id
                        kind: modelData.kind
                        text: modelData.label
                        onClicked: {
                            line.decided();
                            line.drafts.perform(line.draft.id, modelData.id);
                        }
                    }
                }
            }
            Row {
                spacing: Theme.small
                visible: line.draft.canDecide && !line.editing && !line.asking
                Button {
                    id: approve
                    objectName: "draft.approve"
                    kind: "primary"
                    text: line.draft.approveLabel
                    onClicked: line.drafts.askToConfirm(line.draft.id)
                }
                Button {
                    objectName: "draft.edit"
                    text: qsTr("Edit")
                    onClicked: {
                        line.editor.begin(line.draft.id);
                        if (!line.editing)
                            return;
                        words.forceActiveFocus(Qt.TabFocusReason);
                        words.moveToEnd();
                    }
                }
                Button {
                    objectName: "draft.discard"
                    kind: "danger"
                    text: qsTr("Discard")
                    onClicked: {
                        line.decided();
                        line.drafts.reject(line.draft.id);
                    }
                }
            }
            Row {
                spacing: Theme.small
                visible: line.asking && !line.editing
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    rightPadding: Theme.small
                    text: line.drafts.confirmText
                    font.weight: Theme.strong
                }
                Button {
                    id: send
                    objectName: "draft.send"
                    kind: "primary"
                    text: qsTr("Send")
                    onClicked: {
                        line.decided();
                        line.drafts.approveDraft(line.draft.id);
                    }
                }
                Button {
                    kind: "quiet"
                    text: qsTr("Cancel")
                    onClicked: line.drafts.cancelConfirm()
                }
            }
            Row {
                spacing: Theme.small
                visible: line.editing
                Button {
                    id: save
                    objectName: "draft.save"
                    visible: !line.editor.lost
                    kind: "primary"
                    enabled: line.editor.canSave
                    text: qsTr("Save")
                    onClicked: line.editor.save()
                }
                Button {
                    objectName: "draft.copy"
                    visible: line.editor.lost
                    text: qsTr("Copy text")
                    onClicked: words.copyAll()
                }
                Button {
                    kind: "quiet"
                    text: line.editor.lost ? qsTr("Close") : qsTr("Cancel")
                    onClicked: line.editor.close()
                }
            }
        }
    }
}
