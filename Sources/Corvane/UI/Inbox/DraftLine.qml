import QtQuick
import QtQuick.Templates as T
import Corvane

/// One draft of the bar: a line, which opens to the whole text and what can be done with it.
Column {
    id: line

    required property QtObject drafts
    required property string id
    required property string title
    required property string body
    required property string status
    required property string statusLabel
    required property string failureReason
    required property string platform
    required property bool canDecide
    required property string approveLabel

    readonly property bool open: canDecide && drafts.confirmDraft === id
    property bool editing: false
    onOpenChanged: editing = false

    T.AbstractButton {
        id: head
        objectName: "draft.line"
        width: line.width
        height: 40
        enabled: line.canDecide
        hoverEnabled: true
        focusPolicy: Qt.StrongFocus
        text: line.title
        Accessible.role: Accessible.Button
        Accessible.name: line.title + ", " + line.statusLabel + ": " + line.body
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        onClicked: line.open ? line.drafts.cancelConfirm() : line.drafts.askToConfirm(line.id)

        background: Rectangle {
            color: head.hovered && head.enabled ? Theme.raised : Theme.none
            FocusRing { control: head; anchors.margins: 2 }
        }
        contentItem: Item {
            ChannelMark {
                id: mark
                x: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                channel: line.platform
            }
            Label {
                id: title
                anchors.left: mark.right
                anchors.leftMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, parent.width * 0.55)
                text: line.title
                font.weight: Theme.strong
            }
            Label {
                anchors.left: title.right
                anchors.leftMargin: Theme.small
                anchors.right: state.left
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                text: line.body.replace(/\s+/g, " ")
                color: Theme.soft
            }
            Label {
                id: state
                anchors.right: chevron.left
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                text: line.status === "failed" ? qsTr("failed") : line.statusLabel
                font.pixelSize: Theme.meta
                color: line.status === "failed" ? Theme.bad : line.status === "pending" ? Theme.warn : Theme.soft
            }
            Icon {
                id: chevron
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                visible: line.canDecide
                width: line.canDecide ? size : 0
                name: line.open ? "go-up" : "go-down"
                size: 14
            }
        }
    }
    Column {
        x: Theme.large
        width: line.width - Theme.large * 2
        visible: line.open
        spacing: Theme.small
        topPadding: Theme.small
        bottomPadding: Theme.medium

        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            text: line.failureReason
            color: Theme.bad
        }
        Label {
            width: parent.width
            visible: !line.editing
            wrapMode: Text.Wrap
            lineHeight: 1.3
            text: line.body
        }
        TextBox {
            id: words
            objectName: "draft.words"
            width: parent.width
            height: implicitHeight
            visible: line.editing
            placeholderText: qsTr("Message")
            onSubmitted: save.clicked()
        }
        Row {
            spacing: Theme.small
            Button {
                objectName: "draft.approve"
                visible: !line.editing
                kind: "primary"
                text: line.approveLabel
                onClicked: line.drafts.approve(line.id)
            }
            Button {
                objectName: "draft.edit"
                visible: !line.editing
                text: qsTr("Edit")
                onClicked: {
                    words.text = line.body;
                    line.editing = true;
                    words.forceActiveFocus(Qt.TabFocusReason);
                }
            }
            Button {
                objectName: "draft.reject"
                visible: !line.editing
                kind: "danger"
                text: qsTr("Reject")
                onClicked: line.drafts.reject(line.id)
            }
            Button {
                id: save
                objectName: "draft.save"
                visible: line.editing
                kind: "primary"
                enabled: words.text.trim() !== ""
                text: qsTr("Save")
                onClicked: {
                    const draft = line.id;
                    line.drafts.edit(draft, words.text);
                    line.drafts.askToConfirm(draft);
                }
            }
            Button {
                visible: line.editing
                kind: "quiet"
                text: qsTr("Cancel")
                onClicked: line.editing = false
            }
        }
    }
}
