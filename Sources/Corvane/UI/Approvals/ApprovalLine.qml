import QtQuick
import Corvane

/// Something that waits for a person: what it is, all of its text, and what can be done with it.
FocusScope {
    id: line

    required property int index
    required property string key
    required property string id
    required property string kind
    required property string title
    required property string body
    required property string why
    required property string detail
    required property string platform
    required property string riskText
    required property string riskTone
    required property string failureReason
    required property string stateText
    required property int secondsLeft
    required property string approveLabel
    required property string question
    required property bool canDecide
    required property bool canEdit
    required property string linkLabel
    required property bool held ///< it is gone, and keeps its place for a moment
    required property QtObject approvals
    property bool ringed: false

    readonly property QtObject editor: approvals.editor
    readonly property bool editing: kind === "draft" && editor.draftId === id
    readonly property bool asking: approvals.asking === key
    readonly property bool linking: kind === "proposal" && approvals.link.proposalId === id
    readonly property bool armed: secondsLeft > 0
    readonly property bool tells: detail !== "" || riskText !== ""
    property bool wholeText: false
    readonly property var tones: ({ money: Theme.warn, credential: Theme.secret, external: Theme.accent, high: Theme.bad })
    readonly property var signs: ({ proposal: "user", decision: "approvals" })

    objectName: "approval:" + key
    enabled: !held
    opacity: held ? 0.6 : 1
    implicitHeight: card.implicitHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: [title, riskText, stateText, body].filter(part => part !== "").join(", ")

    /// The keyboard stays in the row when the buttons under it change.
    function focusOn(button: Item) {
        if (activeFocus && button.visible)
            button.forceActiveFocus(Qt.TabFocusReason);
    }
    function focusQuestion() {
        doubt.forceActiveFocus(Qt.TabFocusReason);
    }
    function toggleText() {
        wholeText = !wholeText;
    }
    onArmedChanged: Qt.callLater(focusOn, armed ? undo : approve)
    onAskingChanged: if (!asking) Qt.callLater(focusOn, armed ? undo : approve)
    onEditingChanged: Qt.callLater(focusOn, editing ? words : approve)
    onLinkingChanged: Qt.callLater(linking ? picker.focusSearch : () => line.focusOn(approve))

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
                name: line.platform ? "channel-" + line.platform.toLowerCase() : line.signs[line.kind] ?? "mail-send"
                color: Theme.soft
            }
            Label {
                id: title
                anchors.left: sign.right
                anchors.leftMargin: Theme.small
                anchors.right: parent.right
                text: line.title
                wrapMode: Text.Wrap
                maximumLineCount: 3
                font.weight: Theme.strong
                Accessible.ignored: true
            }
        }
        Label {
            id: bodyText
            width: parent.width
            visible: text !== "" && !line.editing
            text: line.body
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
        Label {
            width: parent.width
            visible: text !== ""
            text: line.why
            wrapMode: Text.Wrap
            color: Theme.soft
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: line.failureReason
            wrapMode: Text.Wrap
            color: Theme.bad
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
            text: line.question
            wrapMode: Text.Wrap
            font.weight: Theme.strong
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        // As high in every state: what lies under the pointer does not move when the buttons change.
        Item {
            width: parent.width
            implicitHeight: Theme.control
            visible: !line.linking

            Row {
                id: deciding
                visible: line.canDecide && !line.editing && !line.asking
                spacing: Theme.small
                Button {
                    id: approve
                    objectName: "approval.approve"
                    kind: "primary"
                    text: line.approveLabel
                    Accessible.name: text + ": " + line.title
                    onClicked: line.approvals.approve(line.key)
                }
                Button {
                    objectName: "approval.edit"
                    visible: line.canEdit
                    text: qsTr("Edit")
                    Accessible.name: text + ": " + line.title
                    onClicked: line.approvals.edit(line.key)
                }
                Button {
                    objectName: "approval.link"
                    visible: line.linkLabel !== ""
                    text: line.linkLabel
                    Accessible.name: text + ": " + line.title
                    onClicked: line.approvals.link.begin(line.id)
                }
                Button {
                    objectName: "approval.reject"
                    kind: "danger"
                    text: qsTr("Reject")
                    Accessible.name: text + ": " + line.title
                    onClicked: line.approvals.reject(line.key)
                }
            }
            Label {
                objectName: "approval.state"
                anchors.verticalCenter: parent.verticalCenter
                visible: text !== "" && !line.editing
                width: parent.width - (line.armed ? undo.width + Theme.small : 0)
                text: line.armed ? qsTr("%1 %2 s").arg(line.stateText).arg(line.secondsLeft) : line.stateText
                color: Theme.soft
                Accessible.ignored: true
            }
            // Apart from the other buttons: a second press on one of them does not undo the first.
            Button {
                id: undo
                objectName: "approval.undo"
                anchors.right: parent.right
                visible: line.armed
                text: qsTr("Undo")
                Accessible.name: text + ": " + line.title
                onClicked: line.approvals.undo(line.key)
            }
            Row {
                visible: line.asking
                spacing: Theme.small
                Button {
                    id: doubt
                    objectName: "approval.doubt"
                    text: qsTr("Not now")
                    Accessible.name: text + ": " + line.title
                    onClicked: line.approvals.stepBack()
                }
                Button {
                    objectName: "approval.confirm"
                    kind: "primary"
                    text: line.approveLabel
                    Accessible.name: line.question + " " + text
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
                    text: line.detail
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                    Accessible.ignored: true
                }
                Label {
                    objectName: "approval.risk"
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, 130)
                    text: line.riskText
                    font.pixelSize: Theme.meta
                    font.weight: line.riskTone ? Theme.strong : Theme.regular
                    color: line.tones[line.riskTone] ?? Theme.soft
                    Accessible.ignored: true
                }
            }
        }
    }
}
