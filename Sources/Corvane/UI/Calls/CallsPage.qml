import QtQuick
import Corvane.Calls
import Corvane.Controls

/// Recorded calls: the list at the left, the open one with its sound and transcript, and what came out of it.
Page {
    id: page

    required property CallsView calls

    function act(command: string) {
        if (command === "next" || command === "previous")
            calls.step(command === "next" ? 1 : -1);
        else if (command === "search")
            list.focusSearch();
        else if (command === "back")
            leave();
    }

    panes: [list, body, side]
    Component.onCompleted: calls.refresh()

    CallList {
        id: list
        width: page.width < 1200 ? 280 : 320
        height: parent.height
        focus: true
        calls: page.calls
    }
    Rectangle {
        id: edge
        anchors.left: list.right
        width: 1
        height: parent.height
        color: Theme.line
    }
    FocusScope {
        id: body
        anchors.left: edge.right
        anchors.right: rim.left
        height: parent.height
        visible: page.calls.selected !== ""
        Accessible.role: Accessible.Pane
        Accessible.name: page.calls.page.title

        CallHead {
            id: head
            x: Theme.wide
            y: Theme.wide
            width: parent.width - Theme.wide * 2
            page: page.calls.page
        }
        CallSound {
            id: sound
            anchors.top: head.bottom
            anchors.topMargin: Theme.large
            x: Theme.wide
            width: parent.width - Theme.wide * 2
            view: page.calls.page.sound
        }
        CallTranscript {
            anchors.top: sound.bottom
            anchors.topMargin: Theme.large
            anchors.bottom: parent.bottom
            x: Theme.large
            width: parent.width - Theme.large * 2
            focus: true
            page: page.calls.page
        }
    }
    Rectangle {
        id: rim
        anchors.right: side.left
        width: 1
        height: parent.height
        visible: side.visible
        color: Theme.line
    }
    CallSide {
        id: side
        anchors.right: parent.right
        width: page.width < 1200 ? 260 : 320
        height: parent.height
        visible: body.visible
        page: page.calls.page
    }
    EmptyState {
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: edge.right
        anchors.right: parent.right
        anchors.margins: Theme.huge
        visible: !body.visible && page.calls.query === ""
        icon: "call-start"
        title: page.calls.emptyTitle
        detail: page.calls.emptyText
    }
}
