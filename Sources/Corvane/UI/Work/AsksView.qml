import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Every question: open ones first, urgent ones on top.
FocusScope {
    id: view

    required property OpsAsks asks

    signal newAsked

    PlaceHead {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        title: qsTr("Asks")
        Chip {
            objectName: "asks.answered"
            anchors.verticalCenter: parent.verticalCenter
            checkable: true
            checked: view.asks.includeAnswered
            text: qsTr("Answered, too")
            onClicked: {
                view.asks.includeAnswered = checked;
                checked = Qt.binding(() => view.asks.includeAnswered);
            }
        }
        Button {
            objectName: "asks.new"
            kind: "primary"
            text: qsTr("New ask")
            onClicked: view.newAsked()
        }
    }
    ListView {
        id: list
        objectName: "asks.list"
        anchors.top: head.bottom
        anchors.topMargin: Theme.large
        anchors.bottom: parent.bottom
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        focus: true
        clip: true
        spacing: Theme.small
        bottomMargin: Theme.large
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.asks.asks
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Asks")
        T.ScrollBar.vertical: ScrollBar {}
        HoverHandler { onHoveredChanged: view.asks.asks.pointerInside = hovered }
        delegate: AskCard {
            width: Math.min(ListView.view.width, 760)
            onAnswerPressed: view.asks.beginAnswer(ask.id)
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
    EmptyState {
        anchors.centerIn: list
        width: Math.min(380, parent.width)
        visible: list.count === 0
        icon: "dialog-information"
        title: view.asks.emptyTitle
        detail: view.asks.emptyText
    }
}
