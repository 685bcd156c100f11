import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Panel

/// The day in a few lines and who wrote last; each line leads to its subject.
FocusScope {
    id: tab

    required property CorvaneMenuBarView panel

    // Reuses the delegates, so that the focus stays in place; surplus ones are empty.
    property dayLine noFact
    property glanceLine noLine

    Flickable {
        anchors.fill: parent
        contentHeight: column.implicitHeight + Theme.medium * 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: column
            x: Theme.medium
            y: Theme.medium
            width: parent.width - Theme.medium * 2
            spacing: Theme.medium

            Card {
                objectName: "panel.notice"
                width: parent.width
                padding: Theme.medium
                visible: tab.panel.noticeText !== ""
                Label {
                    width: parent.width
                    visible: text !== ""
                    text: tab.panel.noticeTitle
                    wrapMode: Text.Wrap
                    font.weight: Theme.strong
                    color: Theme.warn
                }
                Label {
                    width: parent.width
                    text: tab.panel.noticeText
                    wrapMode: Text.Wrap
                    lineHeight: 1.3
                    color: Theme.soft
                }
                Button {
                    objectName: "panel.signIn"
                    text: qsTr("Sign in to Nimb")
                    onClicked: tab.panel.run("signIn")
                }
            }
            Column {
                width: parent.width
                SectionHeader {
                    leftPadding: Theme.small
                    bottomPadding: Theme.tight
                    text: qsTr("Today")
                }
                Repeater {
                    model: tab.panel.today.length
                    PanelLine {
                        id: fact
                        required property int index
                        readonly property dayLine line: tab.panel.today[index] ?? tab.noFact
                        objectName: "panel.line." + fact.line.action
                        width: parent.width
                        focus: index === 0
                        sign: fact.line.icon
                        text: fact.line.text
                        onClicked: tab.panel.run(fact.line.action)
                    }
                }
            }
            Column {
                width: parent.width
                SectionHeader {
                    leftPadding: Theme.small
                    bottomPadding: Theme.tight
                    text: qsTr("Inbox")
                }
                Label {
                    x: Theme.small
                    visible: tab.panel.glance.length === 0
                    text: tab.panel.emptyGlanceText
                    color: Theme.faint
                }
                Repeater {
                    model: tab.panel.glance.length
                    PanelLine {
                        id: row
                        required property int index
                        readonly property glanceLine line: tab.panel.glance[index] ?? tab.noLine
                        objectName: "panel.glance"
                        width: parent.width
                        rightPadding: draft.width
                        sign: row.line.channel ? "channel-" + row.line.channel.toLowerCase() : "hub-inbox"
                        text: row.line.title
                        more: row.line.draftText || row.line.snippet
                        count: row.line.unread > 0 ? row.line.unread : ""
                        onClicked: tab.panel.openConversation(row.line.contactId)

                        IconButton {
                            id: draft
                            objectName: "panel.draft"
                            anchors.right: parent.right
                            anchors.verticalCenter: parent.verticalCenter
                            size: 32
                            icon.name: "hub-lumo"
                            enabled: !row.line.isDrafting
                            text: tab.panel.draftLabel
                            Accessible.description: row.line.title
                            onClicked: tab.panel.draftReply(row.index)
                        }
                    }
                }
            }
        }
    }
}
