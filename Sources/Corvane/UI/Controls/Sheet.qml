import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A dialog over the window: a title, the content, and buttons at the bottom. Escape closes it.
T.Popup {
    id: sheet

    default property alias content: column.data
    property alias buttons: foot.data
    property string title

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 440
    padding: Theme.wide
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    T.Overlay.modal: Rectangle { color: Theme.scrim }

    contentItem: FocusScope {
        objectName: sheet.objectName
        focus: true
        implicitHeight: heading.height + Theme.large + column.implicitHeight
            + (foot.children.length ? Theme.wide + foot.implicitHeight : 0)
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title

        Label {
            id: heading
            width: parent.width
            text: sheet.title
            font.pixelSize: Theme.screen
            font.weight: Theme.strong
            Accessible.role: Accessible.Heading
        }
        Column {
            id: column
            anchors.top: heading.bottom
            anchors.topMargin: Theme.large
            width: parent.width
            spacing: Theme.large
        }
        Row {
            id: foot
            anchors.bottom: parent.bottom
            anchors.right: parent.right
            spacing: Theme.small
        }
    }
    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Shadow { radius: Theme.cardRadius }
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.pane; easing.type: Easing.OutCubic }
    }
}
