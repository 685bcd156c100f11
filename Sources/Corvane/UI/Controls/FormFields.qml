import QtQuick
import QtQuick.Layouts
import Corvane.Controls

/// The fields of a form, or those that are folded at first. Return goes to the next one, and submits from the last.
GridLayout {
    id: grid

    required property Form form
    property string name: "connect"
    property bool folded: false

    function focusFirst() {
        focusFrom(0);
    }

    function focusFrom(start: int): bool {
        for (let i = start; i < fields.count; ++i) {
            const box = fields.itemAt(i) as FormFieldBox;
            if (box.field.folded === folded && !box.readOnly) {
                box.forceActiveFocus(Qt.TabFocusReason);
                return true;
            }
        }
        return false;
    }

    width: parent ? parent.width : 0
    columns: 1
    columnSpacing: Theme.small
    rowSpacing: Theme.medium

    Repeater {
        id: fields
        model: grid.form.fieldCount
        FormFieldBox {
            required property int index
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            name: grid.name
            field: grid.form.fieldAt(index)
            visible: field.folded === grid.folded
            onAccepted: if (!grid.focusFrom(index + 1)) grid.form.submit()
        }
    }
}
