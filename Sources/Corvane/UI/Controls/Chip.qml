import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

/// A small rounded label: an active filter that can be removed, or one of a few options.
T.Button {
    id: control

    property bool removable: false
    property bool chevron: false ///< it opens a menu
    property string mark ///< the channel mark before the text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: 24
    leftPadding: 10
    rightPadding: removable ? 6 : 10
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: removable ? qsTr("Remove filter %1").arg(text) : text
    Accessible.checkable: checkable
    Accessible.checked: checked
    Keys.onReturnPressed: clicked()

    contentItem: Row {
        spacing: 5
        ChannelMark {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.mark !== ""
            channel: control.mark
            color: label.color
        }
        Label {
            id: label
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            font.pixelSize: Theme.meta
            color: control.checked || control.removable ? Theme.accent : Theme.soft
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.chevron
            name: "go-down"
            size: 12
            color: label.color
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.removable
            name: "window-close"
            size: 12
            color: label.color
        }
    }
    background: Rectangle {
        radius: height / 2
        color: control.checked || control.removable ? Theme.tint : control.hovered ? Theme.line : Theme.raised
        FocusRing { control: control }
    }
}
