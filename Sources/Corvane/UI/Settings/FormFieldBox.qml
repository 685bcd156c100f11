import QtQuick
import Corvane.Controls
import Corvane.Settings

/// One field of a form.
TextField {
    required property FormField field

    objectName: "connect." + field.id
    label: field.label
    placeholderText: field.placeholder
    readOnly: field.readOnly
    echoMode: field.masked ? TextInput.Password : TextInput.Normal
    text: field.text
    onTextEdited: field.text = text
}
