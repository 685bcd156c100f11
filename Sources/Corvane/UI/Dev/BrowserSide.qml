import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev

/// What went wrong in the page, and the records of earlier checks.
FocusScope {
    id: side

    required property BrowserView screen

    Rectangle { width: 1; height: parent.height; color: Theme.line }
    Flickable {
        id: scroll
        anchors.fill: parent
        anchors.leftMargin: Theme.medium
        anchors.rightMargin: Theme.small
        clip: true
        contentHeight: column.height + Theme.large
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }

        Column {
            id: column
            width: parent.width - Theme.small
            spacing: Theme.small

            SectionHeader { text: qsTr("Issues") }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: side.screen.issues.emptyText
                color: Theme.faint
            }
            Repeater {
                model: side.screen.issues.rows
                Column {
                    id: line
                    required property browserIssue issue
                    objectName: "browser.issue"
                    width: column.width
                    spacing: 2
                    Accessible.role: Accessible.ListItem
                    Accessible.name: issue.kind + ", " + issue.time + ": " + issue.text
                    Label {
                        width: parent.width
                        text: line.issue.kind + " · " + line.issue.time
                        font.pixelSize: Theme.meta
                        color: line.issue.isError ? Theme.bad : Theme.warn
                    }
                    Label {
                        width: parent.width
                        wrapMode: Text.Wrap
                        maximumLineCount: 6
                        elide: Text.ElideRight
                        text: line.issue.text
                    }
                    Label {
                        width: parent.width
                        visible: text !== ""
                        elide: Text.ElideMiddle
                        text: line.issue.place
                        font.pixelSize: Theme.meta
                        color: Theme.faint
                    }
                }
            }
            SectionHeader {
                topPadding: Theme.small
                visible: sessions.count > 0
                text: qsTr("Earlier checks")
            }
            Repeater {
                id: sessions
                model: side.screen.history.rows
                Column {
                    id: look
                    required property browserSession session
                    width: column.width
                    spacing: 2
                    Accessible.role: Accessible.ListItem
                    Accessible.name: session.title + ", " + session.facts
                    Label {
                        width: parent.width
                        elide: Text.ElideMiddle
                        text: look.session.title
                    }
                    Label {
                        width: parent.width
                        text: look.session.facts
                        font.pixelSize: Theme.meta
                        color: Theme.faint
                    }
                    Label {
                        width: parent.width
                        visible: text !== ""
                        wrapMode: Text.Wrap
                        maximumLineCount: 3
                        text: look.session.problem
                        font.pixelSize: Theme.meta
                        color: Theme.bad
                    }
                    Row {
                        spacing: Theme.small
                        Button {
                            implicitHeight: 26
                            text: qsTr("Open")
                            onClicked: side.screen.history.open(look.session.sessionId)
                        }
                        Button {
                            implicitHeight: 26
                            visible: look.session.hasEvidence
                            text: qsTr("Play the steps")
                            onClicked: side.screen.history.play(look.session.sessionId)
                        }
                        Button {
                            implicitHeight: 26
                            visible: look.session.hasEvidence
                            kind: "quiet"
                            text: qsTr("Folder")
                            onClicked: side.screen.history.openFolder(look.session.sessionId)
                        }
                    }
                }
            }
        }
    }
}
