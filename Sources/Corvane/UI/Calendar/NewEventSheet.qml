import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// The fields of a new event.
Sheet {
    id: sheet

    required property CalendarView screen
    property string refusal

    function offer() {
        refusal = "";
        what.text = "";
        place.text = "";
        notes.text = "";
        day.text = screen.suggestedDay();
        from.text = screen.suggestedTime();
        to.text = "";
        open();
        what.forceActiveFocus(Qt.TabFocusReason);
    }

    function submit() {
        refusal = screen.addEvent(what.text, day.text, from.text, to.text, place.text, notes.text);
        if (refusal === "")
            close();
    }

    objectName: "newEventSheet"
    title: qsTr("New event")

    TextField {
        id: what
        objectName: "newEvent.title"
        width: parent.width
        label: qsTr("Title")
        onAccepted: sheet.submit()
    }
    Row {
        spacing: Theme.small
        TextField {
            id: day
            objectName: "newEvent.day"
            width: 160
            label: qsTr("Day")
            onAccepted: sheet.submit()
        }
        TextField {
            id: from
            objectName: "newEvent.from"
            width: 108
            label: qsTr("From")
            placeholderText: qsTr("all day")
            Accessible.name: label
            onAccepted: sheet.submit()
        }
        TextField {
            id: to
            objectName: "newEvent.to"
            width: 108
            label: qsTr("To")
            placeholderText: qsTr("an hour later")
            Accessible.name: label
            onAccepted: sheet.submit()
        }
    }
    TextField {
        id: place
        objectName: "newEvent.place"
        width: parent.width
        label: qsTr("Place or link")
        onAccepted: sheet.submit()
    }
    TextField {
        id: notes
        width: parent.width
        label: qsTr("Notes")
        onAccepted: sheet.submit()
    }
    Label {
        objectName: "newEvent.refusal"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.refusal
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "newEvent.add"
            kind: "primary"
            text: qsTr("Add")
            onClicked: sheet.submit()
        }
    ]
}
