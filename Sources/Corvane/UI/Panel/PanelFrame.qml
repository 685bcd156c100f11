import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Calls
import Corvane.Controls
import Corvane.Panel
import Corvane.Shell

/// The small window at the tray: tabs on top, what the chosen one shows, and the way to the main window.
T.ApplicationWindow {
    id: window

    required property CorvaneMenuBarView panel
    required property Notices notices
    readonly property ApprovalsView approvals: panel.approvals

    title: qsTr("Corvane panel")
    width: 380
    height: 560
    minimumWidth: 380
    maximumWidth: 380
    color: Theme.window
    font: Qt.application.font
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint

    // Closes when it loses the focus.
    property bool wasActive: false
    onActiveChanged: {
        if (active)
            wasActive = true;
        else if (wasActive)
            hide();
    }
    onVisibleChanged: {
        wasActive = visible && active;
        if (visible)
            tabs.forceActiveFocus(Qt.TabFocusReason);
    }

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: if (!tabs.stepBack()) window.hide()

        NoticeBar {
            id: noticeBar
            width: parent.width
            notices: window.notices
        }
        PanelTabs {
            id: tabs
            anchors.top: noticeBar.bottom
            anchors.bottom: foot.top
            width: parent.width
            focus: true
            panel: window.panel
        }
        Item {
            id: foot
            anchors.bottom: parent.bottom
            width: parent.width
            height: 48
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.line
            }
            Button {
                objectName: "panel.review"
                x: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                visible: window.panel.tab === "approvals"
                kind: "quiet"
                text: window.approvals.reviewLabel
                onClicked: window.panel.reviewAll()
            }
            Button {
                objectName: "panel.window"
                x: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                visible: window.panel.tab !== "approvals"
                kind: "quiet"
                text: qsTr("Open Corvane")
                onClicked: window.panel.run("window")
            }
            RecordingPill {
                anchors.right: gear.left
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                recording: window.panel.calls.recording
                visible: recording.recording && window.panel.tab !== "calls"
                onOpened: window.panel.tab = "calls"
            }
            IconButton {
                id: gear
                objectName: "panel.settings"
                anchors.right: parent.right
                anchors.rightMargin: Theme.small
                anchors.verticalCenter: parent.verticalCenter
                icon.name: "preferences-system"
                text: qsTr("Settings")
                onClicked: window.panel.run("settings")
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        z: 100
        color: Theme.none
        border.width: 1
        border.color: Theme.line
    }
}
