import QtQuick
import QtQuick.Templates as T
import Corvane

/// A panel of the assistant: what it is doing, what is missing, or what it brought. `content` shows what is ready.
Card {
    id: card

    required property QtObject panel ///< the view model, a GenerationPanel
    property string name ///< said aloud
    property string dismissLabel: qsTr("Dismiss")
    property alias buttons: foot.data
    default property alias content: body.data

    readonly property string state: panel.state
    readonly property bool ready: state === "ready"
    readonly property bool failed: state === "error" || state === "missingModel"

    visible: state !== "idle"
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
                    running: card.state === "loading" && Theme.pane > 0
                    from: 0
                    to: 360
                    duration: 1600
                    loops: Animation.Infinite
                    onStopped: mark.rotation = 0
                }
            }
            Label {
                width: parent.width - mark.width - parent.spacing
                anchors.verticalCenter: parent.verticalCenter
                text: card.panel.title
                font.weight: Theme.strong
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
            }
        }
        IconButton {
            id: close
            objectName: card.objectName + ".dismiss"
            anchors.right: parent.right
            size: 26
            iconSize: 14
            icon.name: "window-close"
            text: card.state === "loading" ? qsTr("Cancel") : card.dismissLabel
            onClicked: card.panel.dismiss()
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
        width: parent.width
        height: Math.min(body.implicitHeight, 240)
        visible: card.ready
        contentHeight: body.implicitHeight
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}
        Column {
            id: body
            width: parent.width - Theme.small
            spacing: Theme.small
        }
    }
    Flow {
        id: foot
        width: parent.width
        visible: card.ready
        spacing: Theme.small
    }
}
