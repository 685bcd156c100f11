import QtQuick
import Corvane.Controls

/// A sheet that opens and closes with its form. It adds the form's message and buttons; `name` prefixes their names.
Sheet {
    id: sheet

    default property alias body: holder.data
    required property Form form
    property string name: "connect"
    property string submitKeys ///< shortcuts that submit from every field

    signal begun ///< it has just opened: time to place the focus

    function follow() {
        if (!form.isOpen) {
            close();
        } else if (!opened) {
            open();
            begun();
        }
    }

    title: form.title
    onClosed: form.close()
    Component.onCompleted: follow()

    Connections {
        target: sheet.form
        function onChanged() { sheet.follow(); }
    }
    Column {
        id: holder
        width: parent.width
        spacing: Theme.large
    }
    FormMessage {
        form: sheet.form
        name: sheet.name
    }

    buttons: [
        Button {
            objectName: sheet.name + ".cancel"
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.form.cancel()
        },
        Button {
            objectName: sheet.name + ".submit"
            kind: "primary"
            enabled: sheet.form.complete && !sheet.form.busy
            text: sheet.form.buttonLabel
            hint: sheet.submitKeys
            onClicked: sheet.form.submit()
        }
    ]
}
