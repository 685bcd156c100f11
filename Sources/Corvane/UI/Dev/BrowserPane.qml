import QtQuick
import QtQml
import Corvane.Controls
import Corvane.Dev

/// The browser of the project: its controls, the page, and what went wrong in it.
FocusScope {
    id: pane

    required property BrowserView screen
    property bool listed ///< the issues stand beside the page

    function find() {
        finder.active = true;
        finder.item?.takeFocus();
    }

    Keys.onShortcutOverride: event => event.accepted = keyAction(event) !== ""
    Keys.onPressed: event => {
        const action = keyAction(event);
        event.accepted = action !== "";
        act(action);
    }

    /// The keys of the pane, as the sheet of keys lists them.
    function keyAction(event: var): string {
        const control = event.modifiers === Qt.ControlModifier;
        const alt = event.modifiers === Qt.AltModifier;
        if (event.key === Qt.Key_F5 || (control && event.key === Qt.Key_R))
            return "reload";
        if (alt && (event.key === Qt.Key_Left || event.key === Qt.Key_Right))
            return event.key === Qt.Key_Left ? "back" : "forward";
        if (event.key === Qt.Key_F6 && event.modifiers === Qt.ShiftModifier)
            return "leave";
        if (event.key === Qt.Key_B && event.modifiers === (Qt.ControlModifier | Qt.ShiftModifier))
            return "report";
        if (!control)
            return "";
        switch (event.key) {
        case Qt.Key_L:
            return "address";
        case Qt.Key_F:
            return "find";
        case Qt.Key_Plus:
        case Qt.Key_Equal:
            return "larger";
        case Qt.Key_Minus:
            return "smaller";
        case Qt.Key_0:
            return "usual";
        }
        return "";
    }

    function act(action: string) {
        switch (action) {
        case "reload":
            screen.browser.reload();
            break;
        case "back":
            screen.browser.back();
            break;
        case "forward":
            screen.browser.forward();
            break;
        case "address":
        case "leave":
            bar.takeFocus();
            break;
        case "report":
            screen.reportBug();
            break;
        case "find":
            find();
            break;
        case "larger":
            screen.display.zoom(1);
            break;
        case "smaller":
            screen.display.zoom(-1);
            break;
        case "usual":
            screen.display.zoom(0);
            break;
        }
    }

    BrowserBar {
        id: bar
        width: parent.width
        focus: true
        screen: pane.screen
        listed: pane.listed
        onListToggled: pane.listed = !pane.listed
        onFindRequested: pane.find()
        onOpened: page.forceActiveFocus()
    }
    Column {
        id: notices
        anchors.top: bar.bottom
        x: Theme.small
        width: parent.width - Theme.small * 2
        topPadding: visible ? Theme.small : 0
        spacing: Theme.tight
        visible: problem.text !== "" || notice.text !== "" // not their `visible`, which is false while this is

        Banner {
            id: problem
            objectName: "browser.problem"
            width: parent.width
            visible: text !== ""
            tone: "bad"
            text: pane.screen.problem
            action: pane.screen.problemAction
            onActed: pane.screen.solveProblem()
        }
        Banner {
            id: notice
            objectName: "browser.notice"
            width: parent.width
            visible: text !== ""
            text: pane.screen.notice
            action: pane.screen.noticeAction
            dismissable: true
            onActed: pane.screen.actOnNotice()
            onDismissed: pane.screen.dismissNotice()
        }
    }
    Item {
        id: stage
        anchors.top: notices.visible ? notices.bottom : bar.bottom
        anchors.topMargin: Theme.small
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: issues.visible ? issues.left : parent.right
        anchors.margins: Theme.small

        BrowserFrameItem {
            id: page
            objectName: "browser.page"
            anchors.fill: parent
            visible: pane.screen.browser.surface.hasFrame
            surface: pane.screen.browser.surface
            Accessible.role: Accessible.WebDocument
            Accessible.name: pane.screen.browser.title
            Accessible.focusable: true

            Rectangle {
                x: page.shown.x - 1
                y: page.shown.y - 1
                width: page.shown.width + 2
                height: page.shown.height + 2
                color: Theme.none
                border.width: page.activeFocus ? 2 : 1
                border.color: page.activeFocus ? Theme.accent : Theme.line
            }
        }
        Menu {
            id: picker
            objectName: "browser.picker"
            onClosed: page.forceActiveFocus()
            Instantiator {
                model: pane.screen.picker.choices
                delegate: MenuItem {
                    required property choice modelData
                    objectName: "browser.choice:" + modelData.label
                    checkable: true
                    checked: modelData.id === pane.screen.picker.chosen
                    text: modelData.label
                    onTriggered: pane.screen.picker.choose(modelData.id)
                }
                onObjectAdded: (index, object) => picker.insertItem(index, object)
                onObjectRemoved: (index, object) => picker.removeItem(object)
            }
        }
        BrowserFieldPopup {
            parent: page
            picker: pane.screen.picker.field
            frame: page.shown
            onClosed: page.forceActiveFocus()
        }
        Connections {
            target: pane.screen.picker
            function onOpened() {
                const place = pane.screen.picker.place;
                picker.popup(page, page.shown.x + place.x * page.shown.width, page.shown.y + place.y * page.shown.height);
            }
        }
        EmptyState {
            objectName: "browser.empty"
            anchors.centerIn: parent
            width: Math.min(420, parent.width)
            visible: !pane.screen.browser.surface.hasFrame
            icon: "computer"
            title: pane.screen.emptyTitle
            detail: pane.screen.emptyDetail
            action: pane.screen.emptyAction
            onActed: pane.screen.open()
        }
        Loader {
            id: finder
            anchors.right: parent.right
            anchors.top: parent.top
            active: false
            sourceComponent: BrowserFindBar {
                screen: pane.screen
                onClosed: {
                    finder.active = false;
                    page.forceActiveFocus();
                }
            }
        }
    }
    BrowserSide {
        id: issues
        anchors.top: stage.top
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: Math.min(340, parent.width / 2)
        visible: pane.listed
        screen: pane.screen
    }
    BrowserReport {
        sheet: pane.screen.sheet
    }
}
