import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A file that goes with a message: its name and size. It opens where its owner listens, and can be removed.
T.AbstractButton {
    id: control

    property string size
    property bool busy: false
    property bool removable: false
    readonly property real room: 220 ///< for the name

    signal removed

    implicitWidth: line.implicitWidth + leftPadding + rightPadding
    implicitHeight: 28
    leftPadding: Theme.small
    rightPadding: removable ? 2 : Theme.small
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: text + ", " + size
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onDeletePressed: if (removable) removed()

    contentItem: Row {
        id: line
        spacing: 6
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: "document"
            size: 14
            opacity: control.busy ? 0.5 : 1
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, control.room)
            elide: Text.ElideMiddle
            text: control.text
            color: control.busy ? Theme.faint : Theme.text
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: control.size
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
        IconButton {
            objectName: "file.remove"
            anchors.verticalCenter: parent.verticalCenter
            visible: control.removable
            size: 22
            iconSize: 12
            icon.name: "window-close"
            text: qsTr("Remove %1").arg(control.text)
            onClicked: control.removed()
        }
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: control.hovered ? Theme.line : Theme.raised
        border.width: 1
        border.color: Theme.line
        FocusRing { control: control }
    }
}
