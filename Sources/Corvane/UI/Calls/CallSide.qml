import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Calls
import Corvane.Controls

/// What came out of a call: the person, the summary with its sections, what it proposes, and notes.
FocusScope {
    id: side

    required property CallPage page

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Summary")

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
            spacing: Theme.large

            Column {
                width: parent.width
                spacing: Theme.tight
                SectionHeader { text: qsTr("Person") }
                ContactPicker {
                    width: parent.width
                    visible: side.page.people.subject !== ""
                    link: side.page.people
                }
                Row {
                    visible: side.page.people.subject === ""
                    spacing: Theme.small
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        visible: text !== ""
                        text: side.page.personName
                    }
                    Button {
                        objectName: "call.link"
                        kind: "quiet"
                        icon.name: "link"
                        text: side.page.personName ? qsTr("Change…") : qsTr("Link a person…")
                        onClicked: side.page.people.begin(side.page.callId)
                    }
                }
            }
            Card {
                objectName: "call.codex"
                width: parent.width
                padding: Theme.medium
                visible: side.page.processing.asksCodex
                Label {
                    width: parent.width
                    wrapMode: Text.Wrap
                    lineHeight: 1.3
                    text: side.page.processing.codexQuestion
                    color: Theme.soft
                }
                Row {
                    spacing: Theme.small
                    Button {
                        objectName: "call.allowCodex"
                        text: qsTr("Send it to Codex")
                        onClicked: side.page.processing.answerCodex(true)
                    }
                    Button {
                        objectName: "call.refuseCodex"
                        kind: "quiet"
                        text: qsTr("Never")
                        onClicked: side.page.processing.answerCodex(false)
                    }
                }
            }
            Label {
                width: parent.width
                visible: text !== ""
                text: side.page.emptySummaryText
                color: Theme.soft
            }
            Repeater {
                model: side.page.summary
                Column {
                    id: part
                    required property callSummarySection modelData
                    width: parent.width
                    spacing: Theme.tight
                    SectionHeader { text: part.modelData.title }
                    Label {
                        width: parent.width
                        wrapMode: Text.Wrap
                        lineHeight: 1.3
                        text: part.modelData.text
                    }
                }
            }
            Column {
                width: parent.width
                spacing: Theme.small
                visible: side.page.proposals.rows.length > 0
                SectionHeader { text: qsTr("Proposed for the CRM") }
                Repeater {
                    model: side.page.proposals.rows
                    Card {
                        id: proposal
                        required property callProposal modelData
                        objectName: "call.proposal"
                        width: parent.width
                        padding: Theme.medium
                        Label {
                            width: parent.width
                            text: proposal.modelData.title
                            font.weight: Theme.strong
                            wrapMode: Text.Wrap
                        }
                        Label {
                            width: parent.width
                            wrapMode: Text.Wrap
                            maximumLineCount: 6
                            text: proposal.modelData.text
                            color: Theme.soft
                        }
                        Label {
                            width: parent.width
                            visible: text !== ""
                            wrapMode: Text.Wrap
                            text: proposal.modelData.error
                            color: Theme.bad
                        }
                        Label {
                            visible: text !== ""
                            text: proposal.modelData.state
                            color: Theme.faint
                        }
                        Row {
                            visible: proposal.modelData.state === ""
                            spacing: Theme.tight
                            Button {
                                objectName: "call.apply"
                                text: qsTr("Apply")
                                onClicked: side.page.proposals.applyProposal(proposal.modelData.id)
                            }
                            Button {
                                objectName: "call.reject"
                                kind: "quiet"
                                text: qsTr("Reject")
                                onClicked: side.page.proposals.rejectProposal(proposal.modelData.id)
                            }
                        }
                    }
                }
            }
            TextBox {
                id: notes
                objectName: "call.notes"
                width: parent.width
                label: qsTr("Notes")
                minimumLines: 3
                maximumLines: 12
                text: side.page.notes
                onTextChanged: if (editing) side.page.notes = text
            }
        }
    }
}
