import QtQuick
import Corvane.Approvals
import Corvane.Controls

/// Something that waits for a person: what it is, all of its text, and what can be done with it.
FocusScope {
    id: line

    required property int index
    required property approvalRow approval
    required property bool held ///< already gone, shown a moment longer
    required property ApprovalsView approvals
    property bool ringed: false

    readonly property DraftEdit editor: approvals.editor
    readonly property bool editing: approval.kind === "draft" && editor.draftId === approval.id
    readonly property bool asking: approvals.asking === approval.key
    readonly property bool linking: approval.kind === "proposal" && approvals.link.subject === approval.id
    readonly property bool armed: approval.secondsLeft > 0
    readonly property bool acts: approval.actions.length > 0
    readonly property bool tells: approval.detail !== "" || approval.riskText !== ""
    property bool wholeText: false

    objectName: "approval:" + approval.key
    enabled: !held
    opacity: held ? 0.6 : 1
    implicitHeight: card.implicitHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: [approval.title, approval.riskText, approval.stateText, approval.body].filter(part => part !== "").join(", ")

    function signOf(kind: string): string {
        switch (kind) {
        case "proposal": return "user";
        case "decision": return "approvals";
        case "event": return "view-calendar";
        }
        return "mail-send";
    }
    function colourOf(tone: string): color {
        switch (tone) {
        case "money": return Theme.warn;
        case "credential": return Theme.secret;
        case "external": return Theme.accent;
        case "high": return Theme.bad;
        }
        return Theme.soft;
    }
    function focusQuestion() {
        doubt.forceActiveFocus(Qt.TabFocusReason);
    }
    function toggleText() {
        wholeText = !wholeText;
    }
    // Keeps the focus in the row when its buttons change.
    FocusLater { id: focusLater; scope: line }
    onArmedChanged: focusLater.move(armed ? undo : approve)
    onAskingChanged: if (!asking) focusLater.move(armed ? undo : approve)
    onEditingChanged: focusLater.move(editing ? words : approve)
    onLinkingChanged: focusLater.move(linking ? picker.field : approve)

    FocusRing { control: line; shown: line.ringed; anchors.margins: -2; radius: Theme.cardRadius + 2 }
    Card {
        id: card
        width: parent.width
        padding: Theme.medium

        Item {
            width: parent.width
            implicitHeight: Math.max(title.implicitHeight, 18)

            Icon {
                id: sign
                y: 1
                size: 16
                name: line.approval.platform ? "channel-" + line.approval.platform.toLowerCase() : line.signOf(line.approval.kind)
                color: Theme.soft
            }
            Label {
                id: title
                anchors.left: sign.right
                anchors.leftMargin: Theme.small
                anchors.right: parent.right
                text: line.approval.title
                wrapMode: Text.Wrap
                maximumLineCount: 3
                font.weight: Theme.strong
                Accessible.ignored: true
            }
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: line.approval.subject
            wrapMode: Text.Wrap
            font.weight: Theme.strong
            Accessible.ignored: true
        }
        Label {
            id: bodyText
            width: parent.width
            visible: text !== "" && !line.editing
            text: line.approval.body
            wrapMode: Text.Wrap
            lineHeight: 1.3
            maximumLineCount: line.wholeText ? 10000 : 6
            Accessible.ignored: true
        }
        Button {
            objectName: "approval.wholeText"
            visible: bodyText.visible && (bodyText.truncated || line.wholeText)
            height: 24
            kind: "quiet"
            leftPadding: 0
            icon.name: line.wholeText ? "go-up" : "go-down"
            text: line.wholeText ? qsTr("Show less") : qsTr("Show all of it")
            onClicked: line.toggleText()
        }
        TextBox {
            id: words
            objectName: "approval.words"
            width: parent.width
            height: implicitHeight
            visible: line.editing
            placeholderText: qsTr("Message")
            readOnly: line.editor.lost
            onVisibleChanged: if (visible) text = line.editor.text
            onTextChanged: if (visible) line.editor.text = text
            onSubmitted: line.editor.save()
        }
        Label {
            objectName: "approval.problem"
            width: parent.width
            visible: line.editing && text !== ""
            text: line.editor.problem
            wrapMode: Text.Wrap
            color: Theme.bad
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        DraftFiles {
            width: parent.width
            files: line.approval.files
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: line.approval.why
            wrapMode: Text.Wrap
            color: Theme.soft
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: line.approval.failureReason
            wrapMode: Text.Wrap
            color: line.approval.canDecide ? Theme.bad : Theme.soft
        }
        Label {
            width: parent.width
            visible: line.acts
            text: line.approval.stateText
            wrapMode: Text.Wrap
            color: Theme.soft
            Accessible.ignored: true
        }
        ContactPicker {
            id: picker
            width: parent.width
            visible: line.linking
            link: line.approvals.link
        }
        Label {
            objectName: "approval.question"
            width: parent.width
            visible: line.asking
            text: line.approval.question
            wrapMode: Text.Wrap
            font.weight: Theme.strong
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        // The same height in every state, so that the row under the pointer does not move when the buttons change.
        Item {
            width: parent.width
            implicitHeight: Theme.control
            visible: !line.linking

            Row {
                visible: line.approval.canDecide && !line.editing && !line.asking
                spacing: Theme.small
                Button {
                    id: approve
                    objectName: "approval.approve"
                    kind: "primary"
                    text: line.approval.approveLabel
                    Accessible.name: text + ": " + line.approval.title
                    onClicked: line.approvals.approve(line.approval.key)
                }
                Button {
                    objectName: "approval.edit"
                    visible: line.approval.canEdit
                    text: qsTr("Edit")
                    Accessible.name: text + ": " + line.approval.title
                    onClicked: line.approvals.edit(line.approval.key)
                }
                Button {
                    objectName: "approval.link"
                    visible: line.approval.linkLabel !== ""
                    text: line.approval.linkLabel
                    Accessible.name: text + ": " + line.approval.title
                    onClicked: line.approvals.link.begin(line.approval.id)
                }
                Button {
                    objectName: "approval.reject"
                    kind: "danger"
                    text: qsTr("Reject")
                    Accessible.name: text + ": " + line.approval.title
                    onClicked: line.approvals.reject(line.approval.key)
                }
            }
            Row {
                visible: line.acts && !line.editing
                spacing: Theme.small
                Repeater {
                    model: line.approval.actions
                    Button {
                        required property draftAction modelData
                        objectName: "approval." + modelData.id
                        kind: modelData.kind
                        text: modelData.label
                        Accessible.name: text + ": " + line.approval.title
                        onClicked: line.approvals.perform(line.approval.key, modelData.id)
                    }
                }
            }
            Label {
                objectName: "approval.state"
                anchors.verticalCenter: parent.verticalCenter
                visible: text !== "" && !line.editing && !line.acts
                width: parent.width - (line.armed ? undo.width + Theme.small : 0)
                text: line.armed ? qsTr("%1 %2 s").arg(line.approval.stateText).arg(line.approval.secondsLeft) : line.approval.stateText
                color: Theme.soft
                Accessible.ignored: true
            }
            // Away from the other buttons, so that a double click on one of them does not undo the first.
            Button {
                id: undo
                objectName: "approval.undo"
                anchors.right: parent.right
                visible: line.armed
                text: qsTr("Undo")
                Accessible.name: text + ": " + line.approval.title
                onClicked: line.approvals.undo(line.approval.key)
            }
            Row {
                visible: line.asking
                spacing: Theme.small
                Button {
                    id: doubt
                    objectName: "approval.doubt"
                    text: qsTr("Not now")
                    Accessible.name: text + ": " + line.approval.title
                    onClicked: line.approvals.stepBack()
                }
                Button {
                    objectName: "approval.confirm"
                    kind: "primary"
                    text: line.approval.approveLabel
                    Accessible.name: line.approval.question + " " + text
                    onClicked: line.approvals.confirm()
                }
            }
            Row {
                visible: line.editing
                spacing: Theme.small
                Button {
                    objectName: "approval.save"
                    visible: !line.editor.lost
                    kind: "primary"
                    enabled: line.editor.canSave
                    text: qsTr("Save")
                    onClicked: line.editor.save()
                }
                Button {
                    objectName: "approval.copy"
                    visible: line.editor.lost
                    text: qsTr("Copy text")
                    onClicked: words.copyAll()
                }
                Button {
                    objectName: "approval.cancel"
                    kind: "quiet"
                    text: line.editor.lost ? qsTr("Close") : qsTr("Cancel")
                    onClicked: line.editor.close()
                }
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: !line.editing && !line.armed && line.tells
                spacing: Theme.small
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, 150)
                    text: line.approval.detail
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                    Accessible.ignored: true
                }
                Label {
                    objectName: "approval.risk"
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, 130)
                    text: line.approval.riskText
                    font.pixelSize: Theme.meta
                    font.weight: line.approval.riskTone ? Theme.strong : Theme.regular
                    color: line.colourOf(line.approval.riskTone)
                    Accessible.ignored: true
                }
            }
        }
    }
}
