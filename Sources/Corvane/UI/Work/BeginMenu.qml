import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Work

/// What can be created here.
MenuButton {
    id: button

    required property WorkModuleShell shell
    property list<workAction> actions
    property workAction none
    property bool exportable

    implicitHeight: Theme.control
    kind: "plain"
    text: qsTr("Begin")

    Instantiator {
        model: button.actions.length // an open menu stays open while rows change
        delegate: MenuItem {
            required property int index
            readonly property workAction entry: button.actions[index] ?? button.none
            objectName: "begin:" + entry.title
            icon.name: entry.icon
            text: entry.title
            onTriggered: button.shell.create.beginQuickAction(entry.title, entry.subtitle)
        }
        onObjectAdded: (index, item) => button.list.insertItem(index, item)
        onObjectRemoved: (index, item) => button.list.removeItem(item)
    }
    MenuSeparator { visible: button.actions.length > 0 }
    MenuItem { icon.name: "note"; text: qsTr("Note"); onTriggered: button.shell.create.begin("note") }
    MenuItem { icon.name: "hub-lumo"; text: qsTr("Ask"); onTriggered: button.shell.create.begin("ask") }
    MenuSeparator { visible: button.exportable; height: visible ? implicitHeight : 0 }
    MenuItem {
        visible: button.exportable
        height: visible ? implicitHeight : 0
        icon.name: "download"
        text: qsTr("Export as Markdown")
        onTriggered: button.shell.exportContext()
    }
}
