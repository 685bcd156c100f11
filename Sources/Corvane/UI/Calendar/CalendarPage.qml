import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// The calendar: a week or a day, and beside it the selected event.
Page {
    id: page

    required property CalendarView screen
    readonly property bool ready: screen.connection.state === "ready"
    readonly property bool asidePrep: screen.prep.open

    function act(command: string) {
        if (command === "newEvent")
            page.screen.beginEvent();
        else if (command === "back" && screen.prep.open)
            screen.prep.close();
        else if (command === "back" && screen.selected)
            screen.select("");
    }

    panes: [desk, aside]

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    FocusScope {
        id: desk
        anchors.left: parent.left
        anchors.right: aside.visible ? aside.left : parent.right
        height: parent.height
        focus: true
        Accessible.role: Accessible.Pane
        Accessible.name: qsTr("Calendar")

        CalendarHead {
            id: head
            width: parent.width
            visible: page.ready
            screen: page.screen
            onNewPressed: page.screen.beginEvent()
        }
        CalendarNotices {
            id: notices
            anchors.top: head.bottom
            x: Theme.large
            width: parent.width - Theme.large * 2
            screen: page.screen
        }
        CalendarGrid {
            anchors.top: notices.bottom
            anchors.bottom: parent.bottom
            width: parent.width
            focus: true
            visible: page.ready
            screen: page.screen
            onNewPressed: page.screen.beginEvent()
        }
        ConnectCalendar {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -Theme.huge
            visible: !page.ready
            focus: visible
            connection: page.screen.connection
            onSettingsPressed: page.openSettings("calendar")
        }
        DropArea {
            id: drop
            anchors.fill: parent
            enabled: page.screen.canAdd
            onEntered: drag => drag.accepted = drag.hasUrls
            onDropped: drop => {
                for (const url of drop.urls)
                    page.screen.importFile(url);
                drop.accept(Qt.CopyAction);
            }
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: Theme.small
            visible: drop.containsDrag
            radius: Theme.cardRadius
            color: Theme.none
            border.width: 2
            border.color: Theme.accent
        }
    }
    FocusScope {
        id: aside
        anchors.right: parent.right
        width: 320
        height: parent.height
        visible: page.ready && (page.screen.selected !== "" || page.asidePrep)
        onVisibleChanged: if (!visible) desk.forceActiveFocus(Qt.OtherFocusReason)
        Accessible.role: Accessible.Pane
        Accessible.name: page.asidePrep ? qsTr("Meeting brief") : qsTr("Event")

        Rectangle {
            width: 1
            height: parent.height
            color: Theme.line
        }
        EventPane {
            anchors.fill: parent
            anchors.leftMargin: 1
            visible: !page.asidePrep
            focus: visible
            screen: page.screen
        }
        PrepPane {
            anchors.fill: parent
            anchors.leftMargin: 1
            visible: page.asidePrep
            focus: visible
            prep: page.screen.prep
            onReviewPressed: page.screen.openReview()
        }
    }
    NewEventSheet { event: page.screen.newEvent }
}
