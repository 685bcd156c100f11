import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// Shown while no calendar is connected: what can be connected, and what is missing.
FocusScope {
    id: offer

    required property CalendarConnection connection
    signal settingsPressed

    readonly property bool denied: connection.state === "denied"

    width: 420
    height: column.implicitHeight

    Connections {
        target: offer.connection
        function onFolderAsked() { offer.settingsPressed(); }
    }
    Column {
        id: column
        width: parent.width
        spacing: Theme.wide

        EmptyState {
            width: parent.width
            icon: "view-calendar"
            title: offer.connection.title
            detail: offer.connection.text
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Theme.small
            Button {
                objectName: "calendar.connect"
                focus: true
                kind: "primary"
                text: offer.denied ? qsTr("Check again") : qsTr("Connect Calendar")
                onClicked: offer.connection.connectCalendar()
            }
            Button {
                objectName: "calendar.makeLocal"
                visible: offer.denied
                text: qsTr("Make a local calendar")
                onClicked: offer.connection.makeLocal()
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
                onClicked: offer.connection.chooseFolder()
            }
            Button {
                objectName: "calendar.useEvolution"
                visible: offer.connection.hasEvolution
                kind: "quiet"
                text: qsTr("Use Evolution's calendars")
                onClicked: offer.connection.useEvolution()
            }
        }
    }
}
