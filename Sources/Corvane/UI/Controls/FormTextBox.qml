import QtQuick
import Corvane.Controls

/// One field of a form whose text may have several lines.
TextBox {
    required property FormField field
    property string name ///< of the sheet

    objectName: name + "." + field.id
    label: field.label
    placeholderText: field.placeholder
    readOnly: field.readOnly
    minimumLines: field.minimumLines
    maximumLines: field.maximumLines
    text: field.text
    onTextChanged: if (editing) field.text = text
    Component.onCompleted: moveToEnd()
}
