import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Calendar
import Corvane.Calls
import Corvane.Controls
import Corvane.Settings

/// The settings: their sections at the left, the cards of one at the right.
Page {
    id: page

    required property IntegrationsView settings
    required property ApprovalsView approvals
    required property Appearance appearance
    required property CallSettings calls

    signal reviewApprovals

    function cardsOf(section: string): Component {
        switch (section) {
        case "approvals": return waiting;
        case "assistant": return assistant;
        case "voice": return voice;
        case "calls": return callCards;
        case "calendar": return calendar;
        case "sync": return sync;
        case "care": return care;
        case "system": return system;
        }
        return accounts;
    }

    panes: [sections, cards]

    SectionList {
        id: sections
        width: 220
        height: parent.height
        focus: true
        sections: page.settings.sections
        chosen: page.settings.section
        onPicked: id => page.settings.section = id
    }
    Rectangle {
        anchors.left: sections.right
        width: 1
        height: parent.height
        color: Theme.line
    }
    FocusScope {
        id: cards
        anchors.left: sections.right
        anchors.leftMargin: 1
        anchors.right: parent.right
        height: parent.height
        Accessible.role: Accessible.Pane
        Accessible.name: page.settings.sectionLabel

        RevealFocus { view: scroll }
        Flickable {
            id: scroll
            anchors.fill: parent
            contentHeight: column.implicitHeight + Theme.huge * 2
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            T.ScrollBar.vertical: ScrollBar {}

            Column {
                id: column
                x: Math.max(Theme.huge, Math.round((scroll.width - width) / 2))
                y: Theme.huge
                width: Math.min(760, scroll.width - Theme.huge * 2)
                spacing: Theme.large

                Label {
                    text: page.settings.sectionLabel
                    font.pixelSize: Theme.screen
                    font.weight: Theme.strong
                    Accessible.role: Accessible.Heading
                }
                Loader {
                    width: parent.width
                    focus: true
                    sourceComponent: page.cardsOf(page.settings.section)
                }
            }
        }
    }

    Component {
        id: accounts
        AccountsSection { accounts: page.settings.accounts }
    }
    Component {
        id: waiting
        ApprovalsSection {
            settings: page.settings
            approvals: page.approvals
            onReviewed: page.reviewApprovals()
        }
    }
    Component {
        id: assistant
        AssistantSection { assistant: page.settings.assistant }
    }
    Component {
        id: voice
        VoiceSection {
            voice: page.settings.voice
            dictation: page.settings.dictation
        }
    }
    Component {
        id: callCards
        CallsSection { calls: page.calls }
    }
    Component {
        id: calendar
        CalendarSection { calendar: page.settings.calendar }
    }
    Component {
        id: sync
        SyncSection { settings: page.settings }
    }
    Component {
        id: care
        CareSection {
            backups: page.settings.backups
            doctor: page.settings.doctor
        }
    }
    Component {
        id: system
        SystemSection {
            settings: page.settings
            appearance: page.appearance
        }
    }
    PairingView { pairing: page.settings.accounts.pairing }
}
