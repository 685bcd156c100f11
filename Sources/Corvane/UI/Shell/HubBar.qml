import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Calls
import Corvane.Controls
import Corvane.Shell

/// The bar on top: the hubs as words, the search in the middle, the person and the gear at the right.
FocusScope {
    id: bar

    required property AppShell shell
    required property ProfileMenu profile
    required property ApprovalsView approvals
    required property RecordingView recording

    signal searchPressed

    implicitHeight: Theme.bar
    Accessible.role: Accessible.ToolBar
    Accessible.name: qsTr("Hubs")

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }

    Row {
        id: hubs
        x: Theme.medium
        height: parent.height
        spacing: Theme.tight

        Repeater {
            model: bar.shell.hubs
            HubButton {
                id: button
                height: hubs.height
                focus: hub.selected
                onClicked: bar.shell.selectHub(button.hub.raw)
            }
        }
    }

    T.AbstractButton {
        id: pill
        objectName: "topnav.search"

        readonly property real leftEdge: hubs.x + hubs.width + Theme.wide
        readonly property real rightEdge: (dot.visible ? dot.x : calls.x) - Theme.wide

        width: Math.min(360, rightEdge - leftEdge)
        height: Theme.control
        x: Math.max(leftEdge, Math.min((parent.width - width) / 2, rightEdge - width))
        anchors.verticalCenter: parent.verticalCenter
        hoverEnabled: true
        focusPolicy: Qt.TabFocus
        text: bar.shell.hubs.searchLabel
        Accessible.name: text
        onClicked: bar.searchPressed()
        Keys.onReturnPressed: clicked()

        background: Rectangle {
            radius: height / 2
            color: pill.hovered ? Theme.line : Theme.raised
            FocusRing { control: pill }
        }
        contentItem: Item {
            Icon {
                id: lens
                x: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                name: "edit-find"
                color: Theme.soft
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                anchors.left: lens.right
                anchors.leftMargin: Theme.small
                anchors.right: key.left
                anchors.rightMargin: Theme.small
                text: pill.text
                color: Theme.soft
            }
            Label {
                id: key
                anchors.right: parent.right
                anchors.rightMargin: Theme.medium
                anchors.verticalCenter: parent.verticalCenter
                text: Commands.keysOf("palette")
                color: Theme.soft
                font.pixelSize: Theme.meta
            }
        }
    }

    RecordingPill {
        id: dot
        anchors.right: calls.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        recording: bar.recording
        onOpened: bar.shell.openCalls()
    }
    IconButton {
        id: calls
        objectName: "topnav.calls"
        anchors.right: gate.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        icon.name: "call-start"
        checked: bar.shell.calls
        text: qsTr("Calls")
        key: Commands.keysOf("calls")
        onClicked: bar.shell.toggleCalls()
    }
    IconButton {
        id: gate
        objectName: "topnav.approvals"
        anchors.right: person.left
        anchors.rightMargin: Theme.medium
        anchors.verticalCenter: parent.verticalCenter
        icon.name: "approvals"
        checked: bar.shell.approvals
        text: qsTr("Approvals")
        key: Commands.keysOf("approvals")
        Accessible.name: bar.approvals.waiting > 0 ? text + ", " + bar.approvals.waitingText : text
        onClicked: bar.shell.toggleApprovals()

        Badge {
            x: parent.width - width / 2 - 4
            y: -4
            text: bar.approvals.badge
        }
    }
    ProfileButton {
        id: person
        anchors.right: gear.left
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        profile: bar.profile
    }
    IconButton {
        id: gear
        objectName: "topnav.settings"
        anchors.right: parent.right
        anchors.rightMargin: Theme.medium
        anchors.verticalCenter: parent.verticalCenter
        icon.name: "preferences-system"
        checked: bar.shell.settings
        text: qsTr("Settings")
        key: Commands.keysOf("settings")
        onClicked: bar.shell.toggleSettings()
    }
}
