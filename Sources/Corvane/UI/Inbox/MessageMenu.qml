import QtQuick
import QtQuick.Templates as T
import Corvane

/// What can be done with one message.
Menu {
    id: menu

    required property string messageId
    required property string mediaPath
    required property QtObject thread

    T.MenuItem {
        id: moods
        implicitHeight: 40
        implicitWidth: row.implicitWidth + Theme.small * 2
        Accessible.name: qsTr("React")

        contentItem: Row {
            id: row
            leftPadding: Theme.tight
            Repeater {
                model: ["👍", "❤️", "😂", "😮", "😢", "🙏"]
                T.AbstractButton {
                    id: mood
                    required property string modelData
                    implicitWidth: 34
                    implicitHeight: 34
                    hoverEnabled: true
                    text: modelData
                    Accessible.name: qsTr("React with %1").arg(modelData)
                    contentItem: Label {
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        text: mood.text
                        font.pixelSize: Theme.screen
                    }
                    background: Rectangle {
                        radius: Theme.controlRadius
                        color: mood.hovered ? Theme.raised : Theme.none
                    }
                    onClicked: {
                        menu.thread.react(menu.messageId, modelData);
                        menu.close();
                    }
                }
            }
        }
    }
    MenuSeparator {}
    MenuItem {
        icon.name: "edit-copy"
        text: qsTr("Copy text")
        key: "Ctrl+C"
        onTriggered: WindowTools.copy(menu.thread.readableText(menu.messageId))
    }
    MenuItem {
        enabled: menu.mediaPath !== ""
        icon.name: "document-open"
        text: qsTr("Open file")
        onTriggered: WindowTools.open(menu.mediaPath)
    }
}
