import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Evidence, newest first; long words fold.
FocusScope {
    id: view

    property alias model: list.model
    property string emptyTitle
    property string emptyText

    ListView {
        id: list
        objectName: "work.evidence"
        anchors.fill: parent
        anchors.leftMargin: Theme.wide
        anchors.rightMargin: Theme.wide
        focus: true
        clip: true
        spacing: Theme.small
        topMargin: Theme.medium
        bottomMargin: Theme.medium
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Evidence")
        T.ScrollBar.vertical: ScrollBar {}
        delegate: EvidenceCard {
            width: Math.min(ListView.view.width, 760)
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(380, parent.width)
        visible: list.count === 0
        icon: "document"
        title: view.emptyTitle
        detail: view.emptyText
    }
}
