import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Terminals

/// The current terminal, with notices and questions about it.
FocusScope {
    id: pane

    required property TerminalsView screen
    readonly property alias terminal: terminal
    readonly property alias notices: notices ///< a focus scope of its own, with notices and questions

    function act(command: string) {
        switch (command) {
        case "newTerminal":
            screen.create();
            break;
        case "closeTerminal":
            screen.closeCurrent();
            break;
        case "nextTerminal":
            screen.step(1);
            break;
        case "previousTerminal":
            screen.step(-1);
            break;
        case "findInTerminal":
            find();
            break;
        case "copyFromTerminal":
            terminal.copy();
            break;
        case "pasteIntoTerminal":
            screen.paste(terminal.clipboardText());
            break;
        case "previousPrompt":
        case "nextPrompt":
            screen.current?.scrollToPrompt(command === "nextPrompt");
            break;
        case "copyTranscript":
            copyTranscript();
            break;
        case "largerType":
            screen.fontSize.enlarge(1);
            break;
        case "smallerType":
            screen.fontSize.enlarge(-1);
            break;
        case "usualType":
            screen.fontSize.reset();
            break;
        case "back":
            back();
            break;
        }
    }

    /// One at a time: the question, then the search.
    function back() {
        if (screen.question.text)
            screen.question.answer(false);
        else if (screen.current && screen.current.search.shown)
            screen.current.search.shown = false;
        terminal.forceActiveFocus();
    }

    Component.onCompleted: Qt.callLater(turnToQuestion)

    function find() {
        if (!screen.current)
            return;
        screen.current.search.shown = true;
        searchBar.item?.forceActiveFocus();
    }

    function copyTranscript() {
        if (screen.current)
            WindowTools.copy(screen.current.redactedTranscript());
    }

    /// Unrequested content does not take the focus.
    function turnToQuestion() {
        if (question.visible && screen.question.takesFocus)
            question.takeFocus();
    }

    component Blinking: Timer {
        required property bool blinks
        interval: Math.max(100, Qt.styleHints.cursorFlashTime / 2)
        repeat: true
        running: blinks && Qt.styleHints.cursorFlashTime > 0
    }

    FocusScope {
        id: notices
        width: parent.width
        height: visible ? lines.height + Theme.small : 0
        visible: question.text !== "" || ended.text !== ""
        onActiveFocusChanged: if (activeFocus) (question.visible ? question : ended).takeFocus()

        Column {
            id: lines
            x: Theme.small
            y: Theme.small
            width: parent.width - Theme.small * 2
            spacing: Theme.tight

            Banner {
                id: question
                objectName: "terminals.question"
                width: parent.width
                visible: text !== ""
                tone: "warn"
                text: pane.screen.question.text
                action: pane.screen.question.action
                otherAction: pane.screen.question.refusal
                onActed: {
                    pane.screen.question.answer(true);
                    terminal.forceActiveFocus();
                }
                onActedOtherwise: pane.back()
                onVisibleChanged: if (visible) Qt.callLater(pane.turnToQuestion)
            }
            Banner {
                id: ended
                objectName: "terminals.ended"
                width: parent.width
                visible: text !== ""
                text: pane.screen.endedText
                action: pane.screen.restartLabel
                otherAction: pane.screen.closeLabel
                onActed: pane.screen.restart()
                onActedOtherwise: pane.screen.closeCurrent()
                onVisibleChanged: if (visible && terminal.activeFocus) Qt.callLater(takeFocus)
            }
        }
    }
    TerminalItem {
        id: terminal
        objectName: "terminal"
        anchors.fill: parent
        anchors.margins: Theme.small
        anchors.topMargin: notices.height + Theme.small
        focus: true
        session: pane.screen.current
        fontSize: pane.screen.fontSize.pixels
        colors: [...Theme.terminal, Theme.text, Theme.surface, Theme.accent]
        dark: Theme.dark
        selectionColor: Theme.accent
        matchColor: Theme.warn
        Accessible.role: Accessible.Terminal
        onPasteRequested: text => pane.screen.paste(text)
        onLinkOpened: address => pane.screen.openLink(address)
        onMenuRequested: at => {
            menu.at = at;
            menu.popup(terminal, at.x, at.y);
        }

        Blinking {
            blinks: terminal.cursorBlinks && terminal.activeFocus
            onTriggered: terminal.cursorOn = !terminal.cursorOn
            onRunningChanged: terminal.cursorOn = true
        }
        Blinking {
            blinks: terminal.textBlinks && terminal.visible
            onTriggered: terminal.textOn = !terminal.textOn
            onRunningChanged: terminal.textOn = true
        }
        Timer {
            interval: 50
            repeat: true
            running: terminal.draggedOut
            onTriggered: terminal.continueDrag()
        }
    }
    ScrollBar {
        anchors.right: parent.right
        anchors.top: terminal.top
        anchors.bottom: terminal.bottom
        orientation: Qt.Vertical
        size: terminal.scrollSize
        position: terminal.scrollPosition
        active: hovered || pressed || terminal.scrollPosition + terminal.scrollSize < 0.999
        onPositionChanged: if (pressed) terminal.scrollToPosition(position)
    }
    Rectangle {
        anchors.left: terminal.left
        anchors.bottom: terminal.bottom
        width: Math.min(link.implicitWidth + Theme.small * 2, terminal.width)
        height: 24
        visible: terminal.hoveredLink !== ""
        radius: Theme.controlRadius
        color: Theme.raised
        Label {
            id: link
            anchors.fill: parent
            anchors.margins: Theme.tight
            verticalAlignment: Text.AlignVCenter
            leftPadding: Theme.tight
            text: terminal.hoveredLink
            font.pixelSize: Theme.meta
            elide: Text.ElideMiddle
        }
    }
    Loader {
        id: searchBar
        anchors.right: parent.right
        anchors.top: terminal.top
        anchors.rightMargin: Theme.large
        active: pane.screen.current?.search.shown ?? false
        sourceComponent: TerminalSearchBar {
            search: pane.screen.current?.search ?? null
            onClosed: pane.back()
        }
    }
    Menu {
        id: menu
        property point at
        MenuItem {
            text: qsTr("Copy")
            key: Commands.keysOf("copyFromTerminal")
            enabled: terminal.hasSelection
            onTriggered: terminal.copy()
        }
        MenuItem {
            text: qsTr("Paste")
            key: Commands.keysOf("pasteIntoTerminal")
            onTriggered: pane.screen.paste(terminal.clipboardText())
        }
        MenuItem {
            text: qsTr("Select all")
            onTriggered: terminal.selectAll()
        }
        MenuItem {
            text: qsTr("Select this output")
            enabled: menu.visible && terminal.isOutput(menu.at)
            onTriggered: terminal.selectOutput(menu.at)
        }
        MenuItem {
            text: qsTr("Copy the transcript")
            key: Commands.keysOf("copyTranscript")
            onTriggered: pane.copyTranscript()
        }
        MenuSeparator {}
        MenuItem {
            text: qsTr("Find…")
            key: Commands.keysOf("findInTerminal")
            onTriggered: pane.find()
        }
        MenuItem {
            text: pane.screen.createLabel
            key: Commands.keysOf("newTerminal")
            onTriggered: pane.screen.create()
        }
        MenuItem {
            text: pane.screen.closeLabel
            key: Commands.keysOf("closeTerminal")
            onTriggered: pane.screen.closeCurrent()
        }
    }
}
