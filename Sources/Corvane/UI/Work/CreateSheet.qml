import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Work

/// Something new: a context, an item, a note or a question. A save that fails keeps what was typed.
Sheet {
    id: sheet

    required property WorkCreate create
    readonly property string flow: create.flow
    readonly property bool begun: create.open

    onBegunChanged: {
        if (begun) {
            open();
            what.forceActiveFocus(Qt.TabFocusReason);
            what.moveToEnd();
        } else {
            close();
        }
    }
    onClosed: if (create.open) create.cancel()

    objectName: "createSheet"
    width: 480
    title: create.heading

    Binding { target: what; property: "text"; value: sheet.create.title }
    Binding { target: about; property: "text"; value: sheet.create.summary }
    Binding { target: kind; property: "text"; value: sheet.create.kind }
    Binding { target: owner; property: "text"; value: sheet.create.owner }

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
        text: sheet.create.place
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    TextBox {
        id: what
        objectName: "create.title"
        width: parent.width
        label: sheet.create.titleLabel
        maximumLines: 4
        onTextChanged: if (editing) sheet.create.title = text
        onSubmitted: sheet.create.save()
    }
    TextBox {
        id: about
        objectName: "create.summary"
        width: parent.width
        label: sheet.create.summaryLabel
        minimumLines: 2
        maximumLines: 8
        onTextChanged: if (editing) sheet.create.summary = text
        onSubmitted: sheet.create.save()
    }
    Row {
        width: parent.width
        spacing: Theme.small
        visible: sheet.flow !== "ask"
        TextField {
            id: kind
            objectName: "create.kind"
            width: (parent.width - Theme.small) / 2
            label: qsTr("Kind")
            onTextEdited: sheet.create.kind = text
            onAccepted: sheet.create.save()
        }
        TextField {
            id: owner
            width: (parent.width - Theme.small) / 2
            visible: sheet.flow !== "note"
            label: qsTr("Owner")
            onTextEdited: sheet.create.owner = text
            onAccepted: sheet.create.save()
        }
    }
    PriorityRow {
        visible: sheet.flow === "item"
        label: qsTr("Priority")
        choices: sheet.create.priorities
        chosen: sheet.create.priority
        onPicked: word => sheet.create.priority = word
    }
    PriorityRow {
        visible: sheet.flow === "ask"
        label: qsTr("Urgency")
        choices: sheet.create.priorities
        chosen: sheet.create.urgency
        onPicked: word => sheet.create.urgency = word
    }
    Chip {
        objectName: "create.toLumo"
        visible: sheet.flow === "ask"
        checkable: true
        checked: sheet.create.toLumo
        text: qsTr("Let Lumo answer first")
        onClicked: {
            sheet.create.toLumo = checked;
            checked = Qt.binding(() => sheet.create.toLumo);
        }
    }
    Label {
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.create.riskText
        color: Theme.warn
    }
    Label {
        objectName: "create.error"
        width: parent.width
        visible: text !== ""
        wrapMode: Text.Wrap
        text: sheet.create.error
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    buttons: [
        Button {
            kind: "quiet"
            text: qsTr("Cancel")
            onClicked: sheet.create.cancel()
        },
        Button {
            objectName: "create.save"
            kind: "primary"
            text: qsTr("Create")
            hint: "Ctrl+Return"
            onClicked: sheet.create.save()
        }
    ]
}
