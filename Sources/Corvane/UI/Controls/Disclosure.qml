import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A heading that folds the content below through its owner; `detail` is shown while it is folded.
T.AbstractButton {
    id: control

    property bool open: false
    property string detail

    implicitHeight: 28
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: open ? qsTr("Shown") : qsTr("Hidden")
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Icon {
            id: arrow
            anchors.verticalCenter: parent.verticalCenter
            size: 14
            name: control.open ? "go-down" : "go-next"
            color: Theme.faint
        }
        Label {
            id: title
            anchors.left: arrow.right
            anchors.leftMargin: Theme.small
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            color: control.hovered ? Theme.text : Theme.soft
            font.weight: Theme.strong
        }
        Label {
            anchors.left: title.right
            anchors.leftMargin: Theme.medium
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: !control.open
            text: control.detail
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
    }
    background: Item {
        FocusRing { control: control }
    }
}
