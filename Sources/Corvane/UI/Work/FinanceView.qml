import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// Work about money, and the approval before any of it moves.
FocusScope {
    id: view

    required property OpsFinance finance

    signal opened(id: string)

    Column {
        id: head
        x: Theme.wide
        y: Theme.large
        width: parent.width - Theme.wide * 2
        spacing: Theme.small
        PlaceHead {
            width: parent.width
            title: qsTr("Finance")
            Button {
                objectName: "finance.gate"
                kind: "primary"
                icon.name: "approvals"
                text: view.finance.gateLabel
                hint: view.finance.gateHint
                onClicked: view.finance.gate()
            }
        }
        MetricLine {
            width: parent.width
            metrics: view.finance.metrics
        }
        Banner {
            objectName: "finance.notice"
            width: parent.width
            visible: text !== ""
            text: view.finance.notice
            dismissable: true
            onDismissed: view.finance.dismissNotice()
        }
        SearchField {
            objectName: "finance.search"
            width: 320
            placeholderText: view.finance.searchText
            text: view.finance.query
            onTextEdited: view.finance.query = text
            onCleared: view.finance.query = ""
            onLeave: list.forceActiveFocus(Qt.TabFocusReason)
        }
    }
    WorkList {
        id: list
        anchors.top: head.bottom
        anchors.topMargin: Theme.medium
        anchors.bottom: parent.bottom
        x: Theme.wide
        width: parent.width - Theme.wide * 2
        focus: true
        model: view.finance.items
        emptyText: view.finance.emptyText
        name: qsTr("Finance")
        onOpened: id => view.opened(id)
    }
}
