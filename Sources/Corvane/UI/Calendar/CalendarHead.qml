import QtQuick
import QtQuick.Layouts
import Corvane.Calendar
import Corvane.Controls

/// The shown days, and buttons to reach others.
Item {
    id: head

    required property CalendarView screen

    signal newPressed

    height: visible ? row.implicitHeight + Theme.medium * 2 : 0

    RowLayout {
        id: row
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.large
        anchors.rightMargin: Theme.large
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.tight

        Label {
            Layout.fillWidth: true
            objectName: "calendar.title"
            text: head.screen.title
            font.pixelSize: Theme.screen
            font.weight: Theme.strong
            Accessible.role: Accessible.Heading
        }
        IconButton {
            objectName: "calendar.previous"
            icon.name: "go-previous"
            text: head.screen.week ? qsTr("Previous week") : qsTr("Previous day")
            onClicked: head.screen.step(-1)
        }
        Button {
            objectName: "calendar.today"
            kind: "quiet"
            text: qsTr("Today")
            onClicked: head.screen.today()
        }
        IconButton {
            objectName: "calendar.next"
            icon.name: "go-next"
            text: head.screen.week ? qsTr("Next week") : qsTr("Next day")
            onClicked: head.screen.step(1)
        }
        Item { implicitWidth: Theme.small }
        FilterTab {
            objectName: "calendar.week"
            text: qsTr("Week")
            selected: head.screen.week
            onClicked: head.screen.week = true
        }
        FilterTab {
            objectName: "calendar.day"
            text: qsTr("Day")
            selected: !head.screen.week
            onClicked: head.screen.week = false
        }
        Item { implicitWidth: Theme.small }
        Button {
            objectName: "calendar.new"
            kind: "primary"
            enabled: head.screen.canAdd
            text: qsTr("New event")
            onClicked: head.newPressed()
        }
    }
}
