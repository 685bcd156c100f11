import QtQuick
import Corvane.Controls
import Corvane.Settings

/// The fields that connect a channel. Its button waits until they hold what the channel needs.
FormSheet {
    id: sheet

    objectName: "connectSheet"
    onBegun: fields.focusFirst()

    SheetHint { text: sheet.form.hint }
    FormFields {
        id: fields
        form: sheet.form
        rowSpacing: Theme.large
    }
}
