import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev
import Corvane.Work

/// The projects in their groups, with a search and the scopes above them.
FocusScope {
    id: view

    required property DevRail rail
    property string title
    property string detail
    property tabItem noScope

    signal opened(id: string)

    function focusSearch() {
        search.forceActiveFocus(Qt.ShortcutFocusReason);
        search.selectAll();
    }

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Projects")

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Column {
        id: head
        x: Theme.medium
        y: Theme.medium
        width: parent.width - Theme.medium * 2
        spacing: Theme.small

        Item {
            width: parent.width
            height: 28
            Label {
                anchors.verticalCenter: parent.verticalCenter
                width: edit.x - Theme.tight
                text: view.title
                font.pixelSize: Theme.title
                font.weight: Theme.strong
                Accessible.role: Accessible.Heading
                Accessible.description: view.detail
            }
            IconButton {
                id: edit
                objectName: "dev.editProject"
                anchors.right: parent.right
                visible: view.rail.projects.selected !== ""
                size: 28
                icon.name: "document-edit"
                text: qsTr("Edit the project")
                onClicked: view.rail.form.beginEditProject()
            }
        }
        Row {
            width: parent.width
            spacing: Theme.tight
            SearchField {
                id: search
                objectName: "dev.search"
                width: parent.width - add.width - Theme.tight
                placeholderText: qsTr("Search projects")
                text: view.rail.search
                onTextEdited: view.rail.search = text
                onCleared: view.rail.search = ""
                onLeave: list.forceActiveFocus(Qt.TabFocusReason)
            }
            IconButton {
                id: add
                objectName: "dev.newProject"
                anchors.verticalCenter: parent.verticalCenter
                size: 28
                icon.name: "list-add"
                text: qsTr("New project")
                onClicked: view.rail.form.beginNewProject()
            }
        }
        Flow {
            width: parent.width
            spacing: 2
            Repeater {
                model: view.rail.scopes.length
                FilterTab {
                    required property int index
                    readonly property tabItem entry: view.rail.scopes[index] ?? view.noScope
                    objectName: "dev.scope:" + entry.id
                    leftPadding: 5
                    rightPadding: 5
                    text: entry.label
                    count: entry.count
                    selected: view.rail.scope === entry.id
                    onClicked: view.rail.scope = entry.id
                }
            }
        }
    }
    ListView {
        id: list
        objectName: "dev.projects"
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        keyNavigationEnabled: false
        model: view.rail.projects.projects
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Projects")
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onDownPressed: view.rail.step(1)
        Keys.onUpPressed: view.rail.step(-1)
        Keys.onReturnPressed: if (count > 0) view.opened(view.rail.projects.selected)
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

        delegate: ProjectLine {
            objectName: "dev.project:" + project.name
            width: ListView.view.width
            current: view.rail.projects.selected === project.id
            ringed: current && keyboard.shown
            onClicked: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                view.rail.select(project.id);
            }
            onDoubleClicked: view.opened(project.id)
        }
    }
    Label {
        anchors.top: head.bottom
        anchors.topMargin: Theme.large
        x: Theme.large
        width: parent.width - Theme.large * 2
        visible: text !== ""
        wrapMode: Text.Wrap
        text: view.rail.emptyText
        color: Theme.faint
    }
}
