import QtQuick
import Corvane.Controls
import Corvane.Inbox

/// What was written down about a person.
Section {
    id: section

    required property CRMPane crm

    name: "notes"
    title: qsTr("Notes")
    count: crm.notes.rows.count
    showsCount: !crm.notes.hasOlder

    TextBox {
        id: field
        objectName: "contact.note"
        width: parent.width
        height: implicitHeight
        placeholderText: qsTr("Add a note")
        text: section.crm.noteText
        onTextChanged: section.crm.noteText = text
        onSubmitted: section.crm.addNote(text)
    }
    Item { width: 1; height: Theme.tight; visible: save.visible }
    Button {
        id: save
        objectName: "contact.addNote"
        anchors.right: parent.right
        implicitHeight: 28
        visible: field.text.trim() !== ""
        kind: "primary"
        text: qsTr("Add")
        Accessible.name: qsTr("Add the note")
        hint: Commands.keysOf("send")
        onClicked: {
            section.crm.addNote(field.text);
            field.forceActiveFocus(Qt.TabFocusReason);
        }
    }
    Item { width: 1; height: Theme.tight }
    Repeater {
        model: section.crm.notes.rows
        PaneLine { lines: 6 }
    }
    PaneLink {
        x: -Theme.small
        objectName: "contact.olderNotes"
        visible: section.crm.notes.hasOlder
        text: qsTr("Show older")
        subject: qsTr("Notes")
        onClicked: section.crm.notes.showOlder()
    }
}
