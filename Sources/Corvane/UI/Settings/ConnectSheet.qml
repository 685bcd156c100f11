import QtQuick
import Corvane.Controls
import Corvane.Settings

/// The fields that connect a channel. Its button waits until they hold what the channel needs.
Sheet {
    id: sheet

    required property ConnectForm form

    function follow() {
        if (!form.isOpen)
            return close();
        open();
        fields.itemAt(0).forceActiveFocus(Qt.TabFocusReason);
    }

    objectName: "connectSheet"
    title: form.title
    onClosed: form.close()
    Component.onCompleted: follow()

    Connections {
        target: sheet.form
        function onChanged() { sheet.follow(); }
    }

    SheetHint { text: sheet.form.hint }
    Repeater {
        id: fields
        model: sheet.form.fieldCount
        FormFieldBox {
            required property int index
            width: parent.width
            field: sheet.form.field(index)
            onAccepted: {
                if (index + 1 < fields.count)
                    fields.itemAt(index + 1).forceActiveFocus(Qt.TabFocusReason);
                else
                    sheet.form.submit();
            }
        }
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "connect.submit"
            kind: "primary"
            enabled: sheet.form.complete
            text: sheet.form.buttonLabel
            onClicked: sheet.form.submit()
        }
    ]
}
