import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// What waits for the user: decisions, then proposed knowledge; below each, past decisions.
FocusScope {
    id: view

    required property WorkDecisions decisions
    property bool withDecisions: true
    property string emptyTitle: decisions.emptyTitle
    property string emptyText: decisions.emptyText

    Flickable {
        id: scroll
        objectName: "work.decisions"
        anchors.fill: parent
        focus: true
        clip: true
        contentHeight: column.height + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }
        HoverHandler {
            onHoveredChanged: {
                view.decisions.decisions.pointerInside = hovered;
                view.decisions.memory.pointerInside = hovered;
            }
        }

        Column {
            id: column
            x: Theme.wide
            y: Theme.medium
            width: Math.min(parent.width - Theme.wide * 2, 760)
            spacing: Theme.small

            Banner {
                width: parent.width
                visible: view.decisions.error !== ""
                tone: "bad"
                text: view.decisions.error
            }
            Repeater {
                id: decided
                model: view.withDecisions ? view.decisions.decisions : null
                DecisionCard {
                    width: column.width
                    onDecided: approve => view.decisions.decide(decision.id, approve)
                }
            }
            SectionHeader {
                topPadding: Theme.medium
                visible: proposed.count > 0 && view.withDecisions
                text: qsTr("Proposed knowledge")
            }
            Repeater {
                id: proposed
                model: view.decisions.memory
                MemoryCard {
                    width: column.width
                    onDecided: approve => view.decisions.decideMemory(memory.id, approve)
                }
            }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(380, parent.width)
        visible: decided.count === 0 && proposed.count === 0
        icon: "approvals"
        title: view.emptyTitle
        detail: view.emptyText
    }
}
