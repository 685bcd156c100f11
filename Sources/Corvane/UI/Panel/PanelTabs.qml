import QtQuick
import Corvane.Approvals
import Corvane.Calendar
import Corvane.Calls
import Corvane.Controls
import Corvane.Panel

/// The tabs, and what the chosen one shows: in the small window at the tray, and in the main window.
FocusScope {
    id: scope

    required property CorvaneMenuBarView panel
    property real columnWidth: width
    readonly property real columnX: (width - columnWidth) / 2

    function pageOf(tab: string): Component {
        switch (tab) {
        case "approvals": return waiting;
        case "ram": return ram;
        case "calendar": return meetings;
        case "calls": return calls;
        }
        return now;
    }

    /// Closes what is open in the tab; false if nothing is.
    function stepBack(): bool {
        if (panel.tab === "calendar" && panel.meetings.prep.open) {
            panel.meetings.prep.close();
            return true;
        }
        return panel.approvals.stepBack() || panel.resources.stepBack();
    }

    Row {
        id: tabs
        x: scope.columnX + Theme.medium
        y: Theme.medium
        spacing: Theme.tight
        Accessible.role: Accessible.PageTabList
        Accessible.name: qsTr("Tabs")
        Repeater {
            model: scope.panel.tabs.length
            FilterTab {
                id: button
                required property int index
                readonly property tabItem tab: scope.panel.tabs[index]
                objectName: "panel." + button.tab.id
                text: button.tab.label
                count: button.tab.count
                selected: scope.panel.tab === button.tab.id
                onClicked: scope.panel.tab = button.tab.id
                Keys.onRightPressed: nextItemInFocusChain().forceActiveFocus(Qt.TabFocusReason)
                Keys.onLeftPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
            }
        }
    }
    Rectangle {
        id: edge
        anchors.top: tabs.bottom
        anchors.topMargin: Theme.medium
        width: parent.width
        height: 1
        color: Theme.line
    }
    Loader {
        anchors.top: edge.bottom
        anchors.bottom: parent.bottom
        x: scope.columnX
        width: scope.columnWidth
        focus: true
        sourceComponent: scope.pageOf(scope.panel.tab)
        onLoaded: if (scope.activeFocus) forceActiveFocus(Qt.TabFocusReason)
    }
    Component {
        id: now
        NowTab {
            focus: true
            panel: scope.panel
        }
    }
    Component {
        id: ram
        RamTab {
            focus: true
            resources: scope.panel.resources
        }
    }
    Component {
        id: meetings
        UpcomingTab {
            focus: true
            meetings: scope.panel.meetings
            onReviewPressed: scope.panel.reviewAll()
        }
    }
    Component {
        id: calls
        CallsTab {
            focus: true
            panel: scope.panel
        }
    }
    Component {
        id: waiting
        ApprovalList {
            focus: true
            approvals: scope.panel.approvals
        }
    }
}
