import QtQuick
import QtQml
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Work

/// The open item: its fields and its history.
FocusScope {
    id: view

    required property WorkItemSheet sheet
    property bool hasBrowser

    signal reportOpened(capture: string)
    signal stepsPlayed(capture: string)

    Binding { target: titleBox; property: "text"; value: view.sheet.title }
    Binding { target: summaryBox; property: "text"; value: view.sheet.summary }
    Binding { target: ownerBox; property: "text"; value: view.sheet.owner }
    Binding { target: kindBox; property: "text"; value: view.sheet.kind }

    Flickable {
        id: scroll
        anchors.fill: parent
        anchors.bottomMargin: foot.visible ? foot.height : 0
        clip: true
        contentHeight: column.height + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: scroll }

        Column {
            id: column
            x: Theme.large
            y: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.medium

            Item {
                width: parent.width
                height: 28
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width - 36
                    text: view.sheet.facts ? view.sheet.lane + " · " + view.sheet.facts : view.sheet.lane
                    font.pixelSize: Theme.meta
                    color: Theme.soft
                }
                IconButton {
                    objectName: "item.close"
                    anchors.right: parent.right
                    size: 28
                    iconSize: 14
                    icon.name: "window-close"
                    text: qsTr("Close the item")
                    onClicked: view.sheet.close()
                }
            }
            Banner {
                width: parent.width
                visible: view.sheet.notice !== ""
                tone: view.sheet.clashes.length > 0 ? "warn" : "plain"
                text: view.sheet.notice
            }
            Repeater {
                model: view.sheet.clashes
                Card {
                    id: clash
                    required property workFieldClash modelData
                    width: column.width
                    padding: Theme.medium
                    SectionHeader { text: clash.modelData.label }
                    Label { width: parent.width; wrapMode: Text.Wrap; text: qsTr("Yours: %1").arg(clash.modelData.mine) }
                    Label { width: parent.width; wrapMode: Text.Wrap; text: qsTr("Theirs: %1").arg(clash.modelData.theirs) }
                }
            }
            Row {
                visible: view.sheet.clashes.length > 0
                spacing: Theme.small
                Button {
                    objectName: "item.keepMine"
                    text: qsTr("Keep mine")
                    onClicked: view.sheet.keepMine()
                }
                Button {
                    objectName: "item.takeTheirs"
                    text: qsTr("Take theirs")
                    onClicked: view.sheet.takeTheirs()
                }
            }
            TextBox {
                id: titleBox
                objectName: "item.title"
                width: parent.width
                focus: true
                label: qsTr("Title")
                maximumLines: 4
                onTextChanged: if (editing) view.sheet.title = text
                onSubmitted: view.sheet.save()
            }
            TextBox {
                id: summaryBox
                objectName: "item.summary"
                width: parent.width
                label: qsTr("Summary")
                minimumLines: 3
                maximumLines: 12
                onTextChanged: if (editing) view.sheet.summary = text
                onSubmitted: view.sheet.save()
            }
            Row {
                width: parent.width
                spacing: Theme.small
                TextField {
                    id: ownerBox
                    objectName: "item.owner"
                    width: (parent.width - Theme.small) / 2
                    label: qsTr("Owner")
                    onTextEdited: view.sheet.owner = text
                }
                TextField {
                    id: kindBox
                    objectName: "item.kind"
                    width: (parent.width - Theme.small) / 2
                    label: qsTr("Kind")
                    onTextEdited: view.sheet.kind = text
                }
            }
            PriorityRow {
                label: qsTr("Priority")
                choices: view.sheet.priorities
                chosen: view.sheet.priority
                onPicked: word => view.sheet.priority = word
            }
            Row {
                spacing: Theme.small
                visible: !view.sheet.dirty
                Button {
                    objectName: "item.done"
                    visible: !view.sheet.done
                    icon.name: "dialog-ok"
                    text: qsTr("Mark done")
                    onClicked: view.sheet.markDone()
                }
            }
            SectionHeader { topPadding: Theme.small; text: qsTr("History") }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: view.sheet.eventsText
                color: Theme.faint
            }
            Repeater {
                model: view.sheet.events
                TimelineLine {
                    width: column.width
                    dated: true
                    hasBrowser: view.hasBrowser
                    onReportOpened: view.reportOpened(event.capture)
                    onStepsPlayed: view.stepsPlayed(event.capture)
                }
            }
        }
    }
    Rectangle {
        id: foot
        anchors.bottom: parent.bottom
        width: parent.width
        height: 56
        visible: view.sheet.dirty && view.sheet.clashes.length === 0
        color: Theme.surface
        Rectangle { width: parent.width; height: 1; color: Theme.line }
        Row {
            anchors.right: parent.right
            anchors.rightMargin: Theme.large
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.small
            Button {
                kind: "quiet"
                text: qsTr("Discard")
                onClicked: view.sheet.revert()
            }
            Button {
                objectName: "item.save"
                kind: "primary"
                text: qsTr("Save")
                hint: "Ctrl+Return"
                onClicked: view.sheet.save()
            }
        }
    }
}
