import QtQuick
import Corvane.Controls
import Corvane.Work

/// Something new: a context, an item, a note or a question.
FormSheet {
    id: sheet

    required property WorkCreate create

    form: create
    name: "create"
    objectName: "createSheet"
    width: 480
    submitKeys: "Ctrl+Return"
    onBegun: fields.focusFirst()

    FilterMenu {
        objectName: "create.context"
        visible: choices.length > 0
        widest: parent.width
        every: sheet.create.noContext
        choices: sheet.create.contexts
        chosen: sheet.create.chosenContext
        onPicked: word => sheet.create.chooseContext(word)
    }
    Label {
        width: parent.width
        visible: text !== "" && sheet.create.contexts.length === 0
        text: sheet.create.hint
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    FormFields {
        id: fields
        form: sheet.create
        name: sheet.name
        columns: 2
        rowSpacing: Theme.large
        returnSubmits: true
    }
    PriorityRow {
        visible: label !== ""
        label: sheet.create.priorityLabel
        choices: sheet.create.priorities
        chosen: sheet.create.priority
        onPicked: word => sheet.create.priority = word
    }
    Chip {
        objectName: "create.toLumo"
        visible: sheet.create.forLumo
        checkable: true
        checked: sheet.create.toLumo
        text: qsTr("Let Lumo answer first")
        onClicked: {
            sheet.create.toLumo = checked;
            checked = Qt.binding(() => sheet.create.toLumo);
        }
    }
}
