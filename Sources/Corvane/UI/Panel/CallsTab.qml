import QtQuick
import QtQuick.Templates as T
import Corvane.Calls
import Corvane.Controls
import Corvane.Panel

/// Records a call from the panel, and leads to the latest ones.
FocusScope {
    id: tab

    required property CorvaneMenuBarView panel
    readonly property CallsView calls: panel.calls

    RecordingCard {
        id: card
        x: Theme.medium
        y: Theme.medium
        width: parent.width - Theme.medium * 2
        recording: tab.calls.recording
    }
    ListView {
        id: list
        objectName: "panel.calls"
        anchors.top: card.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: true
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        model: tab.calls.rows
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Calls")
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onReturnPressed: (currentItem as T.AbstractButton)?.clicked()
        section.property: "day"
        section.delegate: SectionHeader {
            required property string section
            leftPadding: Theme.medium
            topPadding: Theme.small
            bottomPadding: Theme.tight
            text: section
        }

        KeyboardFocus { id: keyboard; target: list }

        delegate: CallLine {
            objectName: "panel.call"
            width: ListView.view.width
            ringed: keyboard.shown && ListView.isCurrentItem
            onClicked: tab.panel.openCall(call.id)
        }
    }
    EmptyState {
        anchors.horizontalCenter: parent.horizontalCenter
        y: card.y + card.height + 60
        width: parent.width - Theme.huge * 2
        visible: list.count === 0
        icon: "call-start"
        title: tab.calls.emptyTitle
        detail: tab.calls.emptyText
    }
}
