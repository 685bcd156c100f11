import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Panel

/// How much memory is free, and the processes that use it.
FocusScope {
    id: tab

    required property ResourcesView resources

    // Focuses the question, and the list again after the answer.
    readonly property bool isAsking: resources.asking !== ""
    onIsAskingChanged: Qt.callLater(focusOn, isAsking ? cancel : list)
    function focusOn(place: Item) {
        place.forceActiveFocus(Qt.TabFocusReason);
    }

    Column {
        id: head
        x: Theme.medium
        y: Theme.medium
        width: parent.width - Theme.medium * 2
        spacing: Theme.small

        Card {
            objectName: "ram.warning"
            width: parent.width
            padding: Theme.medium
            visible: tab.resources.warningTitle !== ""
            Label {
                width: parent.width
                text: tab.resources.warningTitle
                wrapMode: Text.Wrap
                font.weight: Theme.strong
                color: Theme.warn
            }
            Label {
                width: parent.width
                text: tab.resources.warningText
                wrapMode: Text.Wrap
                color: Theme.soft
            }
        }
        Card {
            objectName: "ram.question"
            width: parent.width
            padding: Theme.medium
            visible: tab.isAsking
            Accessible.role: Accessible.AlertMessage
            Accessible.name: tab.resources.questionTitle + " " + tab.resources.questionText
            Label {
                width: parent.width
                text: tab.resources.questionTitle
                font.weight: Theme.strong
            }
            Label {
                width: parent.width
                text: tab.resources.questionText
                wrapMode: Text.Wrap
                lineHeight: 1.3
                color: Theme.soft
            }
            Row {
                spacing: Theme.small
                Button {
                    objectName: "ram.terminate"
                    kind: "danger"
                    text: qsTr("Terminate")
                    onClicked: tab.resources.terminate()
                }
                Button {
                    id: cancel
                    objectName: "ram.cancel"
                    kind: "quiet"
                    text: qsTr("Cancel")
                    onClicked: tab.resources.stepBack()
                }
            }
        }
        Label {
            objectName: "ram.notice"
            width: parent.width
            visible: text !== ""
            text: tab.resources.notice
            wrapMode: Text.Wrap
            color: Theme.bad
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: tab.resources.memoryText
            font.weight: Theme.strong
        }
        Label {
            width: parent.width
            visible: text !== ""
            text: tab.resources.countsText
            color: Theme.soft
        }
        Label {
            objectName: "ram.empty"
            width: parent.width
            visible: text !== ""
            text: tab.resources.emptyText
            wrapMode: Text.Wrap
            color: Theme.faint
        }
    }
    ListView {
        id: list
        objectName: "ram.processes"
        anchors.top: head.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: tab.resources.processes
        keyNavigationEnabled: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Processes")
        T.ScrollBar.vertical: ScrollBar {}

        delegate: ProcessLine {
            width: ListView.view.width
            onAsked: tab.resources.ask(process.id)
        }
    }
}
