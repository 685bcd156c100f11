import QtQuick
import Corvane.Controls
import Corvane.Panel

/// A process: its name and memory, and the button that asks it to end.
FocusScope {
    id: line

    required property processItem process

    signal asked

    objectName: "process:" + process.id
    implicitHeight: 44
    activeFocusOnTab: false
    Accessible.role: Accessible.ListItem
    Accessible.name: process.name + ", " + process.detail + ", " + process.memory

    FocusRing { control: line; shown: line.activeFocus && !line.process.canEnd; anchors.margins: 2 }
    Label {
        id: name
        anchors.left: parent.left
        anchors.leftMargin: Theme.medium
        anchors.right: memory.left
        anchors.rightMargin: Theme.small
        y: Theme.tight
        text: line.process.name
        Accessible.ignored: true
    }
    Label {
        anchors.left: name.left
        anchors.right: name.right
        anchors.top: name.bottom
        text: line.process.detail
        font.pixelSize: Theme.meta
        color: Theme.soft
        Accessible.ignored: true
    }
    Label {
        id: memory
        anchors.right: parent.right
        anchors.rightMargin: Theme.small * 2 + end.width
        anchors.verticalCenter: parent.verticalCenter
        text: line.process.memory
        color: Theme.soft
        Accessible.ignored: true
    }
    IconButton {
        id: end
        objectName: "process.end"
        anchors.right: parent.right
        anchors.rightMargin: Theme.small
        anchors.verticalCenter: parent.verticalCenter
        focus: true
        visible: line.process.canEnd
        icon.name: "window-close"
        text: qsTr("Terminate %1").arg(line.process.name)
        onClicked: line.asked()
    }
}
