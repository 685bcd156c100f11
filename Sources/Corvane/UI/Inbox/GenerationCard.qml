import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// A panel of the assistant: its progress, what is missing, or the result. `content` shows the result.
Card {
    id: card

    required property GenerationPanel panel ///< the view model, a GenerationPanel
    property string name ///< accessible name
    property string dismissLabel: qsTr("Dismiss")
    property alias buttons: foot.data
    property real room: 240 ///< for the result; the rest scrolls
    default property alias content: body.data

    readonly property string phase: panel.state
    readonly property bool ready: phase === "ready"
    readonly property bool failed: phase === "error" || phase === "missingModel"

    signal dismissed ///< by the user, in this panel
    signal settingsAsked

    /// The default focus: the most likely action.
    function enter() {
        let entry = again.visible ? again : close;
        for (let i = 0; ready && i < foot.children.length; ++i) {
            if (foot.children[i].kind === "primary")
                entry = foot.children[i];
        }
        entry.forceActiveFocus(Qt.TabFocusReason);
    }

    function dismiss() {
        panel.dismiss();
        dismissed();
    }

    visible: phase !== "idle"
    onPhaseChanged: if (visible) WindowTools.announce(heading)
    padding: Theme.medium
    Accessible.role: Accessible.Pane
    Accessible.name: name

    Item {
        width: parent.width
        height: Math.max(head.height, close.height)

        Row {
            id: head
            anchors.left: parent.left
            anchors.right: close.left
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.small
            Icon {
                id: mark
                name: card.failed ? "dialog-warning" : "hub-lumo"
                color: card.failed ? Theme.warn : Theme.accent
                RotationAnimation on rotation {
                    running: card.phase === "loading" && Theme.pane > 0
                    from: 0
                    to: 360
                    duration: 1600
                    loops: Animation.Infinite
                    onStopped: mark.rotation = 0
                }
            }
            Label {
                id: heading
                width: parent.width - mark.width - parent.spacing
                anchors.verticalCenter: parent.verticalCenter
                text: card.panel.title
                font.weight: Theme.strong
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
            }
        }
        Button {
            id: close
            readonly property bool busy: card.phase === "loading"
            objectName: card.objectName + ".dismiss"
            anchors.right: parent.right
            kind: busy ? "plain" : "quiet"
            implicitHeight: 26
            leftPadding: busy ? Theme.small : 5
            rightPadding: leftPadding
            icon.name: busy ? "" : "window-close"
            text: busy ? qsTr("Cancel") : ""
            hint: busy ? "" : card.dismissLabel
            Accessible.name: busy ? qsTr("Cancel") : card.dismissLabel
            onClicked: card.dismiss()
        }
    }
    Label {
        width: parent.width
        visible: text !== ""
        text: card.panel.detail
        wrapMode: Text.Wrap
        color: Theme.soft
    }
    Flickable {
        id: view
        readonly property real below: Math.max(0, contentHeight - height)
        width: parent.width
        height: Math.min(body.implicitHeight, card.room)
        visible: card.ready
        contentHeight: body.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        activeFocusOnTab: below > 0
        Accessible.role: Accessible.Pane
        Accessible.name: card.name
        Keys.onUpPressed: contentY = Math.max(0, contentY - 40)
        Keys.onDownPressed: contentY = Math.min(below, contentY + 40)
        T.ScrollBar.vertical: ScrollBar {}
        RevealFocus { view: view }
        Column {
            id: body
            width: parent.width - Theme.small
            spacing: Theme.small
        }
    }
    FocusRing { control: view; parent: view; anchors.margins: 0; radius: Theme.controlRadius }
    Flow {
        id: foot
        width: parent.width
        visible: card.ready && children.length > 0
        spacing: Theme.small
    }
    Flow {
        width: parent.width
        visible: card.failed && (card.panel.canTryAgain || card.phase === "missingModel")
        spacing: Theme.small
        Button {
            id: again
            objectName: card.objectName + ".again"
            visible: card.panel.canTryAgain
            text: qsTr("Try again")
            onClicked: {
                close.forceActiveFocus(focusReason);
                card.panel.tryAgain();
            }
        }
        Button {
            objectName: card.objectName + ".settings"
            visible: card.phase === "missingModel"
            kind: "quiet"
            text: qsTr("Assistant settings")
            onClicked: card.settingsAsked()
        }
    }
}
