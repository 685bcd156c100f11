import QtQuick
import QtQuick.Layouts
import Corvane.Controls

/// The fields of a form, or those that are folded at first. Return goes to the next one, and submits from the last. In
/// a field of several lines it breaks the line, and Ctrl+Return submits.
GridLayout {
    id: grid

    required property Form form
    property string name: "connect"
    property bool folded: false
    property bool returnSubmits: false ///< from every field

    function focusFirst() {
        focusFrom(0);
    }

    function focusFrom(start: int): bool {
        for (let i = start; i < fields.count; ++i) {
            const field = form.fieldAt(i);
            if (field.folded === folded && !field.readOnly) {
                fields.itemAt(i).forceActiveFocus(Qt.TabFocusReason);
                return true;
            }
        }
        return false;
    }

    width: parent ? parent.width : 0
    columns: 1 ///< which narrow fields share
    columnSpacing: Theme.small
    rowSpacing: Theme.medium

    Repeater {
        id: fields
        model: grid.form.fieldCount
        Loader {
            id: place
            required property int index
            readonly property FormField field: grid.form.fieldAt(index)
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            Layout.columnSpan: field.narrow ? 1 : grid.columns
            visible: field.folded === grid.folded
            sourceComponent: field.maximumLines > 1 ? box : line

            Component {
                id: line
                FormFieldBox {
                    name: grid.name
                    field: place.field
                    focus: true
                    onAccepted: if (grid.returnSubmits || !grid.focusFrom(place.index + 1)) grid.form.submit()
                }
            }
            Component {
                id: box
                FormTextBox {
                    name: grid.name
                    field: place.field
                    focus: true
                    onSubmitted: grid.form.submit()
                }
            }
        }
    }
}
