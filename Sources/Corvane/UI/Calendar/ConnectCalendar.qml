import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// No calendar is read yet: what can be connected, and what is missing.
FocusScope {
    id: offer

    required property CalendarView screen
    signal settingsPressed

    readonly property bool denied: screen.state === "denied"

    width: 420
    height: column.implicitHeight

    Connections {
        target: offer.screen
        function onFolderAsked() { offer.settingsPressed(); }
    }
    Column {
        id: column
        width: parent.width
        spacing: Theme.wide

        EmptyState {
            width: parent.width
            icon: "view-calendar"
            title: offer.screen.emptyTitle
            detail: offer.screen.emptyText
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.small
            Button {
                objectName: "calendar.connect"
                focus: true
                kind: "primary"
                text: offer.denied ? qsTr("Check again") : qsTr("Connect Calendar")
                onClicked: offer.screen.connectCalendar()
            }
            Button {
                objectName: "calendar.makeLocal"
                visible: offer.denied
                text: qsTr("Make a local calendar")
                onClicked: offer.screen.makeLocal()
            }
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.small
            topPadding: -Theme.large
            Button {
                objectName: "calendar.chooseFolder"
                kind: "quiet"
                text: qsTr("Choose a folder…")
                onClicked: offer.screen.chooseFolder()
            }
            Button {
                objectName: "calendar.useEvolution"
                visible: offer.screen.hasEvolution
                kind: "quiet"
                text: qsTr("Use Evolution's calendars")
                onClicked: offer.screen.useEvolution()
            }
        }
    }
}
