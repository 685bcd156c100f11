import Corvane.Controls
import QtQuick
import QtQuick.Layouts

/// An important one-line message with at most two actions. `tone` is "warn", "bad" or "plain".
Rectangle {
    id: banner

    property string text
    property string tone: "plain"
    property string action
    property string otherAction
    property bool dismissable: false
    readonly property color ink: tone === "warn" ? Theme.warn : tone === "bad" ? Theme.bad : Theme.soft

    signal acted
    signal actedOtherwise
    signal dismissed

    function takeFocus() { (primary.visible ? primary : secondary).forceActiveFocus(Qt.TabFocusReason); }

    implicitHeight: row.implicitHeight + Theme.small * 2
    radius: Theme.controlRadius
    color: Theme.raised
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Rectangle {
        width: 3
        height: parent.height - Theme.small * 2
        x: Theme.tight
        anchors.verticalCenter: parent.verticalCenter
        radius: 2
        color: banner.ink
    }
    RowLayout {
        id: row
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.medium + 2
        anchors.rightMargin: Theme.tight
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.small

        Icon {
            name: banner.tone === "plain" ? "dialog-information" : "dialog-warning"
            color: banner.ink
        }
        Label {
            Layout.fillWidth: true
            text: banner.text
            wrapMode: Text.Wrap
            maximumLineCount: 3
            font.pixelSize: Theme.meta + 1
            Accessible.ignored: true
        }
        Button {
            id: primary
            objectName: banner.objectName ? banner.objectName + ".action" : ""
            visible: banner.action !== ""
            implicitHeight: 26
            kind: "plain"
            text: banner.action
            onClicked: banner.acted()
        }
        Button {
            id: secondary
            visible: banner.otherAction !== ""
            implicitHeight: 26
            kind: "quiet"
            text: banner.otherAction
            onClicked: banner.actedOtherwise()
        }
        IconButton {
            visible: banner.dismissable
            size: 26
            iconSize: 14
            icon.name: "window-close"
            text: qsTr("Dismiss")
            onClicked: banner.dismissed()
        }
    }
}
