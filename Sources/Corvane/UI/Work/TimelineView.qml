import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// The history of a context, oldest first; it opens at its end.
FocusScope {
    id: view

    property alias model: list.model
    property string earlierText

    signal earlierAsked

    ListView {
        id: list
        objectName: "work.timeline"
        anchors.fill: parent
        anchors.leftMargin: Theme.wide
        anchors.rightMargin: Theme.wide
        focus: true
        clip: true
        topMargin: Theme.medium
        bottomMargin: Theme.medium
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Timeline")
        T.ScrollBar.vertical: ScrollBar {}
        section.property: "day"
        section.delegate: SectionHeader {
            required property string section
            topPadding: Theme.medium
            bottomPadding: Theme.small
            text: section
        }
        Component.onCompleted: positionViewAtEnd()
        header: Item {
            width: list.width
            height: view.earlierText ? 40 : 0
            Button {
                objectName: "timeline.earlier"
                visible: view.earlierText !== ""
                kind: "quiet"
                text: view.earlierText
                onClicked: view.earlierAsked()
            }
        }
        delegate: TimelineLine {
            width: Math.min(ListView.view.width, 760)
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(360, parent.width)
        visible: list.count === 0
        icon: "note"
        title: qsTr("No activity yet")
        detail: qsTr("Decisions, evidence and messages appear here in order of time.")
    }
}
