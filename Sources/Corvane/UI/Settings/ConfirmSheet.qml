import QtQuick
import Corvane.Controls
import Corvane.Settings

/// Asks before something that cannot be undone.
Sheet {
    id: sheet

    property string subject
    property accountAction action

    signal confirmed(string subject, string actionId)

    function ask(about: string, wanted: accountAction) {
        subject = about;
        action = wanted;
        open();
        cancel.forceActiveFocus(Qt.TabFocusReason);
    }

    objectName: "confirmSheet"
    title: action.label
    width: 400

    Label {
        width: parent.width
        wrapMode: Text.Wrap
        lineHeight: 1.3
        text: sheet.action.confirmation
        color: Theme.soft
    }
    buttons: [
        Button {
            id: cancel
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.close()
        },
        Button {
            objectName: "confirm.yes"
            kind: "danger"
            text: sheet.action.label
            onClicked: {
                sheet.close();
                sheet.confirmed(sheet.subject, sheet.action.id);
            }
        }
    ]
}
