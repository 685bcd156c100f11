import QtQuick
import Corvane.Controls
import Corvane.Shell

/// A hub whose room is not furnished yet: what it is for, and what will stand in it.
Page {
    id: page

    required property PlannedHub screen

    panes: [desk]

    FocusScope {
        id: desk
        anchors.fill: parent
        focus: true

        Column {
            anchors.centerIn: parent
            anchors.verticalCenterOffset: -Theme.huge
            width: 420
            spacing: Theme.wide

            EmptyState {
                width: parent.width
                icon: page.screen.icon
                title: page.screen.label
                detail: page.screen.purpose
            }
            Card {
                width: parent.width
                SectionHeader { text: qsTr("What will stand here") }
                Repeater {
                    model: page.screen.parts
                    Row {
                        id: part
                        required property string modelData
                        spacing: Theme.small
                        Rectangle {
                            width: 5
                            height: 5
                            radius: 3
                            anchors.verticalCenter: parent.verticalCenter
                            color: Theme.faint
                        }
                        Label {
                            text: part.modelData
                            color: Theme.soft
                        }
                    }
                }
            }
            Button {
                anchors.horizontalCenter: parent.horizontalCenter
                focus: true
                kind: "quiet"
                text: qsTr("Back to the inbox")
                icon.name: "hub-inbox"
                onClicked: page.openHub("inbox")
            }
        }
    }
}
