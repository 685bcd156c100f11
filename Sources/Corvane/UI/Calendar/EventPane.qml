import QtQuick
import QtQuick.Templates as T
import Corvane.Calendar
import Corvane.Controls

/// The selected event: time and place, the call, the participants, and its brief.
FocusScope {
    id: pane

    required property CalendarView screen
    readonly property eventCard card: screen.card
    property eventPerson nobody

    RevealFocus { view: scroll }
    Flickable {
        id: scroll
        anchors.fill: parent
        contentHeight: column.implicitHeight + Theme.large * 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: column
            x: Theme.large
            y: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.medium

            Item {
                width: parent.width
                height: Math.max(title.implicitHeight, close.height)
                Label {
                    id: title
                    objectName: "event.title"
                    width: parent.width - close.width - Theme.small
                    anchors.verticalCenter: parent.verticalCenter
                    wrapMode: Text.Wrap
                    text: pane.card.title
                    font.pixelSize: Theme.title
                    font.weight: Theme.strong
                    Accessible.role: Accessible.Heading
                }
                IconButton {
                    id: close
                    anchors.right: parent.right
                    icon.name: "window-close"
                    text: qsTr("Close")
                    onClicked: pane.screen.select("")
                }
            }
            Label {
                width: parent.width
                wrapMode: Text.Wrap
                text: pane.card.when
            }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                text: pane.card.place
                color: Theme.soft
            }
            Label {
                width: parent.width
                text: pane.card.calendar
                font.pixelSize: Theme.meta
                color: Theme.faint
            }
            Row {
                spacing: Theme.small
                Button {
                    objectName: "event.join"
                    visible: pane.card.link !== ""
                    focus: visible
                    kind: pane.card.joinable ? "primary" : "plain"
                    text: pane.card.joinable ? qsTr("Join") : qsTr("Open link")
                    onClicked: pane.screen.join(pane.card.id)
                }
                Button {
                    objectName: "event.prepare"
                    visible: pane.card.meeting
                    text: qsTr("Prepare")
                    onClicked: pane.screen.prepare(pane.card.id)
                }
                Button {
                    objectName: "event.export"
                    kind: "quiet"
                    text: qsTr("Save as file")
                    onClicked: pane.screen.exportSelected()

                    // The same file, for drag and drop.
                    onPressed: pane.screen.offerFile()
                    Drag.active: drag.active && pane.screen.offeredFile !== ""
                    Drag.dragType: Drag.Automatic
                    Drag.supportedActions: Qt.CopyAction
                    Drag.mimeData: ({ "text/uri-list": pane.screen.offeredFile + "\r\n" })
                    DragHandler { id: drag; target: null }
                }
            }
            SectionHeader {
                visible: pane.card.people.length > 0
                text: qsTr("People")
            }
            Repeater {
                model: pane.card.people.length
                T.AbstractButton {
                    id: person
                    required property int index
                    readonly property eventPerson who: pane.card.people[index] ?? pane.nobody
                    objectName: "event.person"
                    width: column.width
                    implicitHeight: 40
                    enabled: who.contactId !== ""
                    hoverEnabled: true
                    focusPolicy: Qt.TabFocus
                    Accessible.role: enabled ? Accessible.Button : Accessible.StaticText
                    Accessible.name: [who.name, who.detail].filter(part => part !== "").join(", ")
                    Keys.onReturnPressed: clicked()
                    onClicked: pane.screen.openPerson(person.who.contactId)
                    background: Rectangle {
                        radius: Theme.controlRadius
                        color: person.hovered ? Theme.raised : Theme.none
                        FocusRing { control: person }
                    }
                    contentItem: Item {
                        Label {
                            id: name
                            x: Theme.small
                            width: parent.width - x - go.width
                            y: detail.visible ? 2 : (parent.height - height) / 2
                            text: person.who.name
                        }
                        Label {
                            id: detail
                            anchors.top: name.bottom
                            x: Theme.small
                            width: parent.width - x - go.width
                            visible: text !== ""
                            text: person.who.detail
                            font.pixelSize: Theme.meta
                            color: Theme.faint
                        }
                        Icon {
                            id: go
                            anchors.right: parent.right
                            anchors.verticalCenter: parent.verticalCenter
                            visible: person.enabled
                            name: "go-next"
                            color: Theme.faint
                        }
                    }
                }
            }
            Label {
                width: parent.width
                visible: text !== ""
                wrapMode: Text.Wrap
                elide: Text.ElideNone
                lineHeight: 1.3
                text: pane.card.notes
                color: Theme.soft
            }
        }
    }
}
