import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Controls

/// What was decided, by day, newest first.
FocusScope {
    id: list

    required property DecisionLog log ///< the view model
    property int sideMargin: Theme.medium
    property alias count: rows.count

    function step(by: int) {
        if (count > 0)
            rows.currentIndex = Math.max(0, Math.min(count - 1, rows.currentIndex + by));
    }

    objectName: "approvals.decided"

    ListView {
        id: rows
        anchors.fill: parent
        focus: true
        model: list.log.rows
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        topMargin: Theme.small
        bottomMargin: Theme.large
        highlightMoveDuration: 0
        keyNavigationEnabled: true
        activeFocusOnTab: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Decided")
        T.ScrollBar.vertical: ScrollBar {}
        KeyboardFocus { id: keyboard; target: rows }

        section.property: "day"
        section.delegate: SectionHeader {
            required property string section
            width: ListView.view.width
            leftPadding: list.sideMargin + 2
            topPadding: Theme.medium
            bottomPadding: Theme.tight
            text: section
        }
        delegate: Item {
            id: row

            required property decidedRow decided

            objectName: "decided:" + decided.id
            x: list.sideMargin
            width: ListView.view.width - list.sideMargin * 2
            implicitHeight: 56
            Accessible.role: Accessible.ListItem
            Accessible.name: [decided.verdict, decided.title, decided.body, decided.who, decided.time, decided.outcome].filter(part => part !== "").join(", ")

            Rectangle {
                anchors.fill: parent
                color: Theme.none
                radius: Theme.controlRadius
                border.width: keyboard.shown && row.ListView.isCurrentItem ? 2 : 0
                border.color: Theme.accent
            }
            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: 1
                color: Theme.line
            }
            Icon {
                id: sign
                x: Theme.tight
                anchors.verticalCenter: parent.verticalCenter
                size: 16
                name: row.decided.platform ? "channel-" + row.decided.platform.toLowerCase() : row.decided.kind === "proposal" ? "user" : row.decided.kind === "decision" ? "approvals" : row.decided.kind === "event" ? "view-calendar" : "mail-send"
                color: Theme.soft
            }
            Column {
                anchors.left: sign.right
                anchors.leftMargin: Theme.medium
                anchors.right: said.left
                anchors.rightMargin: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                spacing: 2
                Label {
                    width: parent.width
                    text: row.decided.title
                    font.weight: Theme.strong
                    Accessible.ignored: true
                }
                Label {
                    width: parent.width
                    visible: text !== ""
                    text: row.decided.body
                    color: Theme.soft
                    Accessible.ignored: true
                }
            }
            Column {
                id: said
                anchors.right: parent.right
                anchors.rightMargin: Theme.tight
                anchors.verticalCenter: parent.verticalCenter
                spacing: 2
                Label {
                    anchors.right: parent.right
                    text: row.decided.verdict
                    font.weight: Theme.strong
                    color: row.decided.tone === "good" ? Theme.good : Theme.bad
                    Accessible.ignored: true
                }
                Label {
                    anchors.right: parent.right
                    text: [row.decided.outcome, row.decided.who, row.decided.time].filter(part => part !== "").join(" · ")
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                    Accessible.ignored: true
                }
            }
        }
        footer: Item {
            width: list.width
            implicitHeight: list.log.hasOlder ? Theme.control + Theme.large : 0
            visible: list.log.hasOlder
            Button {
                objectName: "approvals.older"
                anchors.centerIn: parent
                kind: "quiet"
                text: qsTr("Show older")
                onClicked: list.log.showOlder()
            }
        }
    }
    EmptyState {
        objectName: "approvals.nothingDecided"
        anchors.centerIn: parent
        anchors.verticalCenterOffset: -Theme.wide
        width: Math.min(360, parent.width - Theme.huge * 2)
        visible: list.count === 0
        icon: "approvals"
        title: list.log.emptyTitle
        detail: list.log.emptyText
    }
}
