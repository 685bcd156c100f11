import QtQuick
import QtQuick.Templates as T
import Corvane

/// The day in a few lines and who wrote last, each the way to what it speaks of.
FocusScope {
    id: tab

    required property QtObject panel

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
                        required property int index
                        readonly property var fact: tab.panel.today[index] ?? ({ text: "", icon: "", action: "" })
                        objectName: "panel.line." + fact.action
                        width: parent.width
                        focus: index === 0
                        sign: fact.icon
                        text: fact.text
                        onClicked: tab.panel.run(fact.action)
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
                        required property int index
                        readonly property var row: tab.panel.glance[index]
                            ?? ({ title: "", snippet: "", channel: "", unread: 0, contactId: "" })
                        objectName: "panel.glance"
                        width: parent.width
                        sign: row.channel ? "channel-" + row.channel.toLowerCase() : "hub-inbox"
                        text: row.title
                        more: row.snippet
                        count: row.unread > 0 ? row.unread : ""
                        onClicked: tab.panel.openConversation(row.contactId)
                    }
                }
            }
        }
    }
}
