import QtQuick
import Corvane.Calendar
import Corvane.Controls

/// The fields of a new event.
FormSheet {
    id: sheet

    required property NewEventForm event

    form: event
    name: "newEvent"
    objectName: "newEventSheet"
    onBegun: fields.focusFirst()

    FormFields {
        id: fields
        form: sheet.event
        name: sheet.name
        columns: 3
        rowSpacing: Theme.large
        returnSubmits: true
    }
}
