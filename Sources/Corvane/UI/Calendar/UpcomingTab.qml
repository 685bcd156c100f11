import QtQuick
import QtQuick.Templates as T
import Corvane.Calendar
import Corvane.Controls

/// The panel's next events: their time, the link to the call, and the brief.
FocusScope {
    id: tab

    required property UpcomingMeetings meetings
    property meetingLine noLine

    signal reviewPressed

    PrepPane {
        anchors.fill: parent
        visible: tab.meetings.prep.open
        focus: visible
        prep: tab.meetings.prep
        onReviewPressed: tab.reviewPressed()
    }
    FocusScope {
        anchors.fill: parent
        visible: !tab.meetings.prep.open
        focus: visible

        EmptyState {
            anchors.centerIn: parent
            width: parent.width - Theme.huge * 2
            visible: tab.meetings.lines.length === 0
            icon: "view-calendar"
            title: tab.meetings.emptyTitle
            detail: tab.meetings.emptyText
            action: tab.meetings.connectLabel
            onActed: tab.meetings.connectCalendar()
        }
        Flickable {
            anchors.fill: parent
            visible: tab.meetings.lines.length > 0
            contentHeight: column.implicitHeight + Theme.medium * 2
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            T.ScrollBar.vertical: ScrollBar {}

            Column {
                id: column
                x: Theme.medium
                y: Theme.medium
                width: parent.width - Theme.medium * 2
                spacing: Theme.small

                Banner {
                    width: parent.width
                    visible: tab.meetings.troubleTitle !== ""
                    tone: "warn"
                    text: tab.meetings.troubleTitle + ": " + tab.meetings.troubleText
                }
                Label {
                    objectName: "panel.headline"
                    width: parent.width
                    leftPadding: Theme.small
                    visible: text !== ""
                    text: tab.meetings.headline
                    font.weight: Theme.strong
                }
                Repeater {
                    model: tab.meetings.lines.length
                    Card {
                        id: card
                        required property int index
                        readonly property meetingLine line: tab.meetings.lines[index] ?? tab.noLine
                        objectName: "panel.meeting"
                        width: column.width
                        padding: Theme.medium
                        Label {
                            width: parent.width
                            text: card.line.title
                            font.weight: Theme.strong
                        }
                        Label {
                            width: parent.width
                            text: card.line.relative !== "" ? card.line.when + " · " + card.line.relative : card.line.when
                            font.pixelSize: Theme.meta
                            color: Theme.soft
                        }
                        Row {
                            visible: card.line.joinable || card.line.meeting
                            spacing: Theme.small
                            Button {
                                objectName: "panel.join"
                                visible: card.line.joinable
                                kind: "primary"
                                text: qsTr("Join")
                                onClicked: tab.meetings.join(card.line.id)
                            }
                            Button {
                                objectName: "panel.prepare"
                                visible: card.line.meeting
                                focus: card.index === 0
                                text: qsTr("Prepare")
                                Accessible.name: qsTr("Prepare %1").arg(card.line.title)
                                onClicked: tab.meetings.prepare(card.line.id)
                            }
                        }
                    }
                }
            }
        }
    }
}
