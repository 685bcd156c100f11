import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// Picks files for a message.
Button {
    required property Attachments attachments
    property bool labelled: false ///< shows the text beside the icon

    objectName: "composer.attach"
    visible: attachments.allowed
    kind: "quiet"
    leftPadding: labelled ? Theme.medium : 7
    rightPadding: leftPadding
    icon.name: "mail-attachment"
    text: labelled ? qsTr("Attach files") : ""
    hint: labelled ? "" : qsTr("Attach files")
    Accessible.name: qsTr("Attach files")
    onClicked: attachments.choose()
}
