import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// The places of a hub, and its contexts in their groups.
FocusScope {
    id: pane

    required property WorkModuleShell shell
    readonly property WorkRail rail: shell.rail

    Accessible.role: Accessible.Pane
    Accessible.name: rail.contextsTitle

    function focusSearch() {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
        search.selectAll();
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Column {
        id: places
        x: Theme.small
        y: Theme.medium
        width: parent.width - Theme.small * 2
        spacing: 2

        Repeater {
            model: pane.rail.places.length // the rows stay while their counts change
            RailPlace {
                required property int index
                readonly property tabItem entry: pane.rail.places[index]
                objectName: "work.place:" + entry.id
                width: places.width
                text: entry.label
                count: entry.count
                current: pane.rail.place === entry.id
                onClicked: pane.rail.place = entry.id
            }
        }
    }
    Item {
        id: head
        anchors.top: places.bottom
        anchors.topMargin: Theme.large
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        height: 28

        SectionHeader {
            anchors.verticalCenter: parent.verticalCenter
            text: pane.rail.contextsTitle
        }
        IconButton {
            objectName: "work.newContext"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            size: 28
            icon.name: "list-add"
            text: pane.rail.createLabel
            onClicked: pane.shell.create.begin("context")
        }
    }
    SearchField {
        id: search
        objectName: "work.search"
        anchors.top: head.bottom
        anchors.topMargin: Theme.tight
        x: Theme.medium
        width: parent.width - Theme.medium * 2
        placeholderText: qsTr("Search")
        text: pane.rail.query
        onTextEdited: pane.rail.query = text
        onCleared: pane.rail.query = ""
        onLeave: list.forceActiveFocus(Qt.TabFocusReason)
    }
    ListView {
        id: list
        objectName: "work.contexts"
        anchors.top: search.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        keyNavigationEnabled: false
        model: pane.rail.contexts
        Accessible.role: Accessible.List
        Accessible.name: pane.rail.contextsTitle
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onDownPressed: pane.rail.step(1)
        Keys.onUpPressed: pane.rail.step(-1)
        section.property: "group"
        section.delegate: SectionHeader {
            required property string section
            leftPadding: Theme.small
            topPadding: Theme.small
            bottomPadding: Theme.tight
            color: Theme.faint
            text: section
        }

        KeyboardFocus { id: keyboard; target: list }

        delegate: ContextLine {
            objectName: "work.context:" + context.title
            width: ListView.view.width
            current: pane.rail.selectedContextId === context.id
            ringed: current && keyboard.shown
            onClicked: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                pane.rail.select(context.id);
            }
        }
    }
    Label {
        anchors.top: search.bottom
        anchors.topMargin: Theme.large
        x: Theme.large
        width: parent.width - Theme.large * 2
        visible: text !== ""
        wrapMode: Text.Wrap
        text: pane.rail.contextsEmpty
        color: Theme.faint
    }
}
