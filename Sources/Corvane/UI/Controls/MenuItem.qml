import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A line of a menu, with the key that does the same at its right.
T.MenuItem {
    id: control

    property string key
    property bool danger: false
    readonly property color ink: danger ? Theme.bad : enabled ? Theme.text : Theme.faint

    implicitWidth: leftPadding + label.implicitWidth + (key ? keys.implicitWidth + Theme.wide : 0) + rightPadding
    implicitHeight: 30
    leftPadding: Theme.small + (icon.name || checkable ? 24 : 0)
    rightPadding: Theme.small + (subMenu ? 20 : 0)
    hoverEnabled: true
    Accessible.name: text
    Accessible.description: key

    contentItem: Item {
        Label {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            color: control.ink
        }
        Label {
            id: keys
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: control.key
            color: Theme.faint
            font.pixelSize: Theme.meta
        }
    }
    indicator: Icon {
        x: Theme.small
        anchors.verticalCenter: parent ? parent.verticalCenter : undefined
        name: control.checkable ? (control.checked ? "dialog-ok" : "") : control.icon.name
        color: control.checkable ? Theme.accent : control.ink
    }
    arrow: Icon {
        visible: control.subMenu !== null
        x: control.width - width - Theme.tight
        anchors.verticalCenter: parent ? parent.verticalCenter : undefined
        name: visible ? "go-next" : ""
        color: Theme.faint
    }
    background: Rectangle {
        radius: Theme.controlRadius
        color: control.highlighted ? Theme.raised : Theme.none
    }
}
