import Corvane.Controls
import QtQuick

/// A button that opens the menu inside it.
Button {
    id: control

    default property alias items: menu.contentData
    readonly property alias list: menu
    property bool chevron: true

    kind: "quiet"
    implicitHeight: 28
    leftPadding: Theme.small
    rightPadding: chevron ? 24 : Theme.small
    down: pressed || menu.visible
    Accessible.role: Accessible.ButtonMenu
    onClicked: menu.popup(control, 0, control.height + Theme.tight)
    Keys.onDownPressed: clicked()

    Icon {
        visible: control.chevron
        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        name: "go-down"
        size: 14
        color: Theme.faint
    }
    Menu { id: menu }
}
