import QtQuick
import Corvane.Controls

/// One field of a form.
TextField {
    required property FormField field
    property string name: "connect" ///< of the sheet

    objectName: name + "." + field.id
    label: field.label
    placeholderText: field.placeholder
    readOnly: field.readOnly
    echoMode: field.masked ? TextInput.Password : TextInput.Normal
    text: field.text
    onTextEdited: field.text = text
}
