import QtQuick
import QtQuick.Window
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Calls
import Corvane.Controls
import Corvane.Inbox
import Corvane.Settings
import Corvane.Shell
import Corvane.Wall

/// The main window: the wall, or the frame with the screens behind it.
T.ApplicationWindow {
    id: window

    required property ContentView content
    required property LoginWallView wall
    required property Notices notices
    required property StoreRecovery recovery
    required property AppShell shell
    required property ProfileMenu profile
    required property IntegrationsView settings
    required property InboxView inbox
    required property ApprovalsView approvals
    required property CallsView calls
    required property CallSettings callSettings
    required property Appearance appearance
    required property WindowLayout layout
    required property ClosingNotice closingNotice

    title: content.title
    color: Theme.window
    font: Qt.application.font // otherwise text fields use the desktop's editor font
    minimumWidth: 1040
    minimumHeight: 660

    onClosing: event => {
        // Quitting also closes the hidden window.
        if (!window.visible || !window.closingNotice.due())
            return;
        event.accepted = false;
        notice.open();
    }
    Shortcut {
        sequence: Commands.keysOf("quit") // on the login wall, too
        onActivated: Commands.run("quit")
    }
    Sheet {
        id: notice
        objectName: "closingNotice"
        title: window.closingNotice.title
        onOpened: window.closingNotice.said()

        Label {
            width: parent.width
            wrapMode: Text.Wrap
            lineHeight: 1.3
            text: window.closingNotice.text
            color: Theme.soft
        }
        buttons: [
            Button {
                objectName: "closingNotice.quit"
                kind: "quiet"
                text: window.closingNotice.quitLabel
                onClicked: Commands.run("quit")
            },
            Button {
                objectName: "closingNotice.close"
                focus: true
                text: window.closingNotice.closeLabel
                onClicked: {
                    notice.close();
                    window.close();
                }
            }
        ]
    }

    Binding { target: Theme; property: "dark"; value: window.appearance.dark }
    Binding { target: Theme; property: "reducedMotion"; value: window.appearance.reducedMotion }

    NoticeBar {
        id: noticeBar
        width: parent.width
        notices: window.notices
    }
    Loader {
        anchors.fill: parent
        anchors.topMargin: noticeBar.height
        focus: true
        sourceComponent: window.recovery.needed ? recoveryPage : window.content.showsWall ? gate : frame
        onLoaded: (item as Item).forceActiveFocus()
    }
    Component {
        id: recoveryPage
        RecoveryPage { recovery: window.recovery }
    }
    Component {
        id: gate
        LoginWall { wall: window.wall }
    }
    Component {
        id: frame
        AppFrame {
            shell: window.shell
            profile: window.profile
            settings: window.settings
            inbox: window.inbox
            approvals: window.approvals
            calls: window.calls
            callSettings: window.callSettings
            appearance: window.appearance
            layout: window.layout
            shown: window.visible && window.visibility !== Window.Minimized
            seen: window.active
        }
    }
}
