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
    required property bool canDecide
    required property bool canEdit
    required property string linkLabel
    required property QtObject approvals
    property bool ringed: false

    readonly property bool editing: approvals.editing === key
    readonly property bool linking: kind === "proposal" && approvals.link.proposalId === id
    readonly property bool armed: secondsLeft > 0
    readonly property bool tells: detail !== "" || riskText !== ""
    property bool wholeText: false
    readonly property var tones: ({ money: Theme.warn, credential: Theme.secret, external: Theme.accent, high: Theme.bad })
    readonly property var signs: ({ proposal: "user", decision: "approvals" })

    objectName: "approval:" + key
    implicitHeight: card.implicitHeight
    Accessible.role: Accessible.ListItem
    Accessible.name: [title, riskText, stateText, body].filter(part => part !== "").join(", ")

    /// The keyboard stays in the row when the buttons under it change.
    function focusOn(button: Item) {
        if (activeFocus && button.visible)
            button.forceActiveFocus(Qt.TabFocusReason);
    }
    function toggleText() {
        wholeText = !wholeText;
    }
    onArmedChanged: Qt.callLater(focusOn, armed ? undo : approve)
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
                anchors.right: state.left
                anchors.rightMargin: state.text ? Theme.small : 0
                text: line.title
                wrapMode: Text.Wrap
                maximumLineCount: 3
                font.weight: Theme.strong
                Accessible.ignored: true
            }
            Label {
                id: state
                objectName: "approval.state"
                anchors.right: parent.right
                text: line.stateText
                color: Theme.soft
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
            onVisibleChanged: if (visible) text = line.approvals.editText
            onTextChanged: if (visible) line.approvals.editText = text
            onSubmitted: line.approvals.saveEdit()
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
        Item {
            width: parent.width
            implicitHeight: Theme.control
            visible: (line.canDecide || line.armed || line.tells) && !line.linking

            Row {
                id: deciding
                visible: line.canDecide && !line.editing
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
            Row {
                visible: line.armed
                spacing: Theme.small
                Button {
                    id: undo
                    objectName: "approval.undo"
                    text: qsTr("Undo")
                    Accessible.name: text + ": " + line.title
                    onClicked: line.approvals.undo(line.key)
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("%1 s").arg(line.secondsLeft)
                    color: Theme.faint
                    Accessible.ignored: true
                }
            }
            Row {
                visible: line.editing
                spacing: Theme.small
                Button {
                    objectName: "approval.save"
                    kind: "primary"
                    enabled: words.text.trim() !== ""
                    text: qsTr("Save")
                    onClicked: line.approvals.saveEdit()
                }
                Button {
                    objectName: "approval.cancel"
                    kind: "quiet"
                    text: qsTr("Cancel")
                    onClicked: line.approvals.cancelEdit()
                }
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: !line.editing && line.tells
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
