import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls

/// All calls by day, a search over them, and the recording that runs.
FocusScope {
    id: pane

    required property CallsView calls

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Calls")

    function focusSearch() {
        search.forceActiveFocus(Qt.TabFocusReason);
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Column {
        id: head
        x: Theme.medium
        y: Theme.medium
        width: parent.width - Theme.medium * 2
        spacing: Theme.medium
        RecordingCard {
            width: parent.width
            recording: pane.calls.recording
        }
        SearchField {
            id: search
            objectName: "calls.search"
            width: parent.width
            placeholderText: pane.calls.searchText
            text: pane.calls.query
            onTextEdited: pane.calls.query = text
            onCleared: pane.calls.query = ""
            onLeave: list.forceActiveFocus(Qt.TabFocusReason)
        }
    }
    ListView {
        id: list
        objectName: "calls.list"
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        keyNavigationEnabled: false
        model: pane.calls.rows
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Calls")
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onDownPressed: pane.calls.step(1)
        Keys.onUpPressed: pane.calls.step(-1)
        section.property: "day"
        section.delegate: SectionHeader {
            required property string section
            leftPadding: Theme.medium
            topPadding: Theme.medium
            bottomPadding: Theme.tight
            text: section
        }

        KeyboardFocus { id: keyboard; target: list }

        delegate: CallLine {
            objectName: "calls.row:" + call.id
            width: ListView.view.width
            current: pane.calls.selected === call.id
            ringed: current && keyboard.shown
            onClicked: {
                list.forceActiveFocus(Qt.MouseFocusReason);
                pane.calls.select(call.id);
            }
        }
    }
    EmptyState {
        anchors.horizontalCenter: parent.horizontalCenter
        y: head.y + head.height + 80
        width: parent.width - Theme.huge * 2
        visible: list.count === 0 && pane.calls.query !== ""
        icon: "call-start"
        title: pane.calls.emptyTitle
        detail: pane.calls.emptyText
    }
}
