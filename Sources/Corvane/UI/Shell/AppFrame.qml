import QtQuick
import QtQml
import Corvane.Approvals
import Corvane.Calls
import Corvane.Controls
import Corvane.Inbox
import Corvane.Settings
import Corvane.Shell

/// Everything behind the wall: the hub bar, the screen under it, and what may lie over both.
FocusScope {
    id: frame

    required property AppShell shell
    required property ProfileMenu profile
    required property IntegrationsView settings
    required property InboxView inbox
    required property ApprovalsView approvals
    required property CallsView calls
    required property CallSettings callSettings
    required property Appearance appearance
    required property WindowLayout layout
    required property bool shown ///< the window is visible
    required property bool seen ///< and active

    readonly property bool covered: shell.settings || shell.approvals || shell.calls
    readonly property bool inboxShown: !covered && shell.selectedNav === "inbox"

    focus: true

    Binding { target: frame.inbox.list; property: "shown"; value: frame.shown && frame.inboxShown }
    Binding { target: frame.inbox.person; property: "onScreen"; value: frame.seen && frame.inboxShown }
    Binding { target: frame.settings; property: "visible"; value: frame.shell.settings }

    Instantiator {
        model: Commands.shortcuts
        delegate: Shortcut {
            required property commandRow modelData
            sequences: modelData.sequences
            onActivated: Commands.run(modelData.id)
        }
    }
    Connections {
        target: Commands
        function onPageAsked(id: string) {
            if (id === "shortcuts") {
                shortcuts.active = true;
                (shortcuts.item as ShortcutsSheet).open();
            } else if (id === "back" && frame.shell.settings) {
                frame.shell.closeSettings();
            } else {
                (screen.item as Page).run(id);
            }
        }
    }

    HubBar {
        id: bar
        width: parent.width
        shell: frame.shell
        profile: frame.profile
        approvals: frame.approvals
        recording: frame.calls.recording
        onSearchPressed: Commands.run("palette")
    }
    Loader {
        id: screen
        anchors.fill: parent
        anchors.topMargin: bar.height
        focus: true
        onLoaded: (item as Page).forceActiveFocus()
        Component.onCompleted: showPage()

        function showPage() {
            if (frame.shell.settings)
                sourceComponent = settingsPage;
            else if (frame.shell.approvals)
                sourceComponent = approvalsPage;
            else if (frame.shell.calls)
                sourceComponent = callsPage;
            else
                setSource(frame.shell.page, { screen: frame.shell.screen, hubBar: bar, layout: frame.layout });
        }
    }
    Connections {
        target: frame.shell
        function onNavigationChanged() { screen.showPage(); }
    }
    Connections {
        target: screen.item as Page
        function onLeave() {
            if (frame.shell.settings)
                frame.shell.closeSettings();
            else if (frame.shell.calls)
                frame.shell.closeCalls();
            else
                frame.shell.closeApprovals();
        }
        function onOpenSettings(section: string) {
            if (section)
                frame.settings.section = section;
            frame.shell.openSettings();
        }
    }
    Component {
        id: settingsPage
        SettingsPage {
            settings: frame.settings
            approvals: frame.approvals
            appearance: frame.appearance
            calls: frame.callSettings
            onReviewApprovals: frame.shell.openApprovals()
            hubBar: bar
        }
    }
    Component {
        id: approvalsPage
        ApprovalsPage {
            approvals: frame.approvals
            hubBar: bar
        }
    }

    Component {
        id: callsPage
        CallsPage {
            calls: frame.calls
            hubBar: bar
        }
    }
    ConsentSheet {
        id: consent
        recording: frame.calls.recording
    }
    Connections {
        target: frame.calls.recording
        function onConsentAsked() { consent.open(); }
        function onStarted() { consent.close(); }
    }

    PaletteView { inbox: frame.inbox }
    Loader {
        id: shortcuts
        active: false
        sourceComponent: ShortcutsSheet { shell: frame.shell }
    }
}
