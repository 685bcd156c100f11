import QtQuick
import QtQuick.Templates as T
import Corvane.Calendar
import Corvane.Controls

/// The brief for a meeting: five lines, who made them, and all that is known here.
FocusScope {
    id: pane

    required property MeetingPrep prep

    signal reviewPressed

    RevealFocus { view: scroll }
    Flickable {
        id: scroll
        anchors.fill: parent
        contentHeight: column.implicitHeight + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: column
            x: Theme.large
            y: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.medium

            Item {
                width: parent.width
                height: Math.max(title.implicitHeight, close.height)
                Label {
                    id: title
                    width: parent.width - close.width - Theme.small
                    anchors.verticalCenter: parent.verticalCenter
                    wrapMode: Text.Wrap
                    text: pane.prep.title
                    font.pixelSize: Theme.title
                    font.weight: Theme.strong
                    Accessible.role: Accessible.Heading
                }
                IconButton {
                    id: close
                    objectName: "prep.close"
                    anchors.right: parent.right
                    focus: true
                    icon.name: "window-close"
                    text: qsTr("Close")
                    onClicked: pane.prep.close()
                }
            }
            Label {
                width: parent.width
                visible: pane.prep.busy
                text: qsTr("Preparing…")
                color: Theme.soft
            }
            Banner {
                width: parent.width
                visible: text !== ""
                text: pane.prep.message
            }
            Label {
                objectName: "prep.summary"
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                elide: Text.ElideNone
                lineHeight: 1.4
                text: pane.prep.summary
            }
            Label {
                width: parent.width
                visible: text !== ""
                text: pane.prep.madeBy
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
            Row {
                spacing: Theme.small
                Button {
                    objectName: "prep.regenerate"
                    enabled: !pane.prep.busy
                    text: qsTr("Regenerate")
                    onClicked: pane.prep.regenerate()
                }
                Button {
                    objectName: "prep.review"
                    visible: pane.prep.asksReview
                    kind: "quiet"
                    text: qsTr("Review follow-up")
                    onClicked: pane.reviewPressed()
                }
            }
            SectionHeader {
                visible: pane.prep.packet !== ""
                text: qsTr("What is known here")
            }
            Label {
                objectName: "prep.packet"
                width: parent.width
                wrapMode: Text.Wrap
                elide: Text.ElideNone
                lineHeight: 1.3
                text: pane.prep.packet
                color: Theme.soft
            }
        }
    }
}
