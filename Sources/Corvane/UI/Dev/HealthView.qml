import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Dev

/// What runs on this machine, and the state of the project.
FocusScope {
    id: view

    required property DevHealth health

    ListView {
        id: list
        objectName: "dev.health"
        x: Theme.wide
        y: Theme.large
        width: Math.min(parent.width - Theme.wide * 2, 760)
        height: parent.height - y
        focus: true
        clip: true
        spacing: 1
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: count > 0 || activeFocus
        model: view.health.lines
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Health")
        T.ScrollBar.vertical: ScrollBar {}

        header: Item {
            width: list.width
            height: again.height + Theme.medium
            Label {
                width: again.x - Theme.medium
                height: again.height
                verticalAlignment: Text.AlignVCenter
                wrapMode: Text.Wrap
                text: view.health.safetyNote
                color: Theme.soft
            }
            Button {
                id: again
                objectName: "dev.healthAgain"
                anchors.right: parent.right
                icon.name: "view-refresh"
                enabled: !view.health.busy
                text: view.health.busy ? qsTr("Counting…") : qsTr("Count again")
                onClicked: view.health.reload()
            }
        }
        delegate: Item {
            id: row
            required property healthLine line
            width: ListView.view.width
            height: 48
            Accessible.role: Accessible.ListItem
            Accessible.name: line.detail ? line.title + ": " + line.value + ", " + line.detail : line.title + ": " + line.value

            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: 1
                color: Theme.line
            }
            Rectangle {
                id: dot
                anchors.verticalCenter: parent.verticalCenter
                width: 8
                height: 8
                radius: 4
                color: row.line.tone === "good" ? Theme.good : row.line.tone === "warn" ? Theme.warn : Theme.faint
            }
            Label {
                id: title
                anchors.left: dot.right
                anchors.leftMargin: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                text: row.line.title
                Accessible.ignored: true
            }
            Label {
                anchors.left: title.right
                anchors.leftMargin: Theme.medium
                anchors.right: value.left
                anchors.rightMargin: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                text: row.line.detail
                font.pixelSize: Theme.meta
                color: row.line.tone === "warn" ? Theme.warn : Theme.faint
                Accessible.ignored: true
            }
            Label {
                id: value
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                text: row.line.value
                font.weight: Theme.strong
                Accessible.ignored: true
            }
        }
    }
    FocusRing { control: list; anchors.fill: list; anchors.margins: 2 }
}
