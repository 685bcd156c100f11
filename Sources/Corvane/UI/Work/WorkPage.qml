import QtQuick
import Corvane.Controls
import Corvane.Work

/// A hub over the work records: its places and contexts at the left, what is chosen in the middle, and beside it the
/// inspector or the item that is open.
Page {
    id: page

    required property WorkModuleShell shell
    property Component placeView ///< shown in the middle while no context is selected
    property bool placeActs ///< it handles the commands itself while it has the focus

    signal placeActed(command: string)

    readonly property bool inContext: shell.rail.place === ""
    readonly property bool wide: width >= 1200

    function act(command: string) {
        if (placeActs && desk.activeFocus)
            placeActed(command);
        else if (command === "next" || command === "previous")
            shell.rail.step(command === "next" ? 1 : -1);
        else if (command === "search")
            rail.focusSearch();
        else if (command === "newWork")
            shell.create.begin("item");
        else if (command === "undo")
            undo();
        else if (command === "back" && !strip.activeFocus && shell.item.itemId !== "")
            shell.item.close();
        else if (strip.activeFocus)
            strip.act(command);
    }

    function undo() {
        shell.board.undo();
    }

    panes: [rail, desk, strip, aside]
    Component.onCompleted: shell.shown = true
    Component.onDestruction: shell.shown = false

    HubRail {
        id: rail
        width: page.wide ? 264 : 228
        height: parent.height
        focus: true
        shell: page.shell
    }
    Rectangle {
        id: edge
        anchors.left: rail.right
        width: 1
        height: parent.height
        color: Theme.line
    }
    FocusScope {
        id: desk
        anchors.left: edge.right
        anchors.right: aside.visible ? aside.left : parent.right
        anchors.top: parent.top
        anchors.bottom: strip.top
        Accessible.role: Accessible.Pane
        Accessible.name: page.inContext ? page.shell.header.title : ""

        Banner {
            id: notice
            x: Theme.wide
            y: Theme.medium
            width: parent.width - Theme.wide * 2
            visible: !page.inContext && text !== ""
            text: page.shell.notice
            dismissable: true
            onDismissed: page.shell.dismissNotice()
        }
        Loader {
            anchors.fill: parent
            anchors.topMargin: notice.visible ? notice.y + notice.height : 0
            active: !page.inContext
            visible: active
            focus: active
            sourceComponent: page.placeView
        }
        Loader {
            anchors.fill: parent
            active: page.inContext
            visible: active
            focus: active
            sourceComponent: ContextView { shell: page.shell }
        }
    }
    ShellStrip {
        id: strip
        anchors.left: edge.right
        anchors.right: desk.right
        anchors.bottom: parent.bottom
        height: visible ? implicitHeight : 0
        visible: page.inContext || page.shell.shells.view.count > 0
        room: page.height
        shells: page.shell.shells
        agents: page.shell.agents
        onVisibleChanged: if (!visible && activeFocus) desk.forceActiveFocus(Qt.OtherFocusReason)
    }
    FocusScope {
        id: aside
        anchors.right: parent.right
        width: page.shell.item.itemId !== "" ? 380 : 300
        height: parent.height
        visible: page.shell.item.itemId !== "" || (page.inContext && page.wide)
        onVisibleChanged: if (!visible) desk.forceActiveFocus(Qt.OtherFocusReason)
        Accessible.role: Accessible.Pane
        Accessible.name: page.shell.item.itemId !== "" ? page.shell.item.title : page.shell.inspectorTitle

        Rectangle {
            anchors.fill: parent
            color: Theme.surface
        }
        Rectangle {
            width: 1
            height: parent.height
            color: Theme.line
        }
        ItemSheet {
            anchors.fill: parent
            anchors.leftMargin: 1
            visible: page.shell.item.itemId !== ""
            focus: visible
            sheet: page.shell.item
        }
        Inspector {
            anchors.fill: parent
            anchors.leftMargin: 1
            visible: page.shell.item.itemId === ""
            focus: visible
            shell: page.shell
        }
    }
    Toast {
        anchors.horizontalCenter: desk.horizontalCenter
        anchors.bottom: strip.top
        anchors.bottomMargin: Theme.wide
        undoName: "work.undo"
        text: page.shell.board.undoText
        onUndone: page.shell.board.undo()
        onDismissed: page.shell.board.dismissUndo()
    }
    CreateSheet { create: page.shell.create }
}
