import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox

/// A part of the contact pane that folds, and stays as it was left.
Column {
    id: section

    default property alias content: inner.data
    required property WindowLayout layout
    required property string name
    property string title
    property int count: 0
    property bool showsCount: true
    property string emptyText ///< shown if there are no rows
    property bool open: layout.sectionOpen(section.name)

    /// Unfolds it without remembering that, and moves the focus to its head.
    function reveal() {
        open = true;
        head.forceActiveFocus(Qt.TabFocusReason);
    }

    T.AbstractButton {
        id: head
        objectName: "contact.section." + section.name
        width: parent.width
        height: 36
        focus: section.name === "identity" // the first focus in the pane
        focusPolicy: Qt.TabFocus
        hoverEnabled: true
        text: section.title
        Accessible.role: Accessible.Button
        Accessible.name: section.showsCount && section.count ? qsTr("%1, %2").arg(section.title).arg(section.count) : section.title
        Accessible.description: section.open ? qsTr("Open") : qsTr("Folded")
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        onClicked: {
            section.open = !section.open;
            section.layout.setSectionOpen(section.name, section.open);
        }
        contentItem: Item {
            SectionHeader {
                id: caption
                x: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                text: section.title
                Accessible.ignored: true
            }
            Label {
                anchors.left: caption.right
                anchors.leftMargin: 6
                anchors.baseline: caption.baseline
                visible: section.showsCount && section.count > 0
                text: section.count
                font.pixelSize: Theme.meta
                color: Theme.faint
                Accessible.ignored: true
            }
            Icon {
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                name: section.open ? "go-up" : "go-down"
                size: 14
                color: head.hovered ? Theme.text : Theme.faint
            }
        }
        background: Item {
            Rectangle {
                x: Theme.large
                width: parent.width - Theme.large * 2
                height: 1
                color: Theme.line
            }
            FocusRing { control: head; anchors.margins: 2; radius: Theme.controlRadius }
        }
    }
    Column {
        id: inner
        x: Theme.large
        width: parent.width - Theme.large * 2
        visible: section.open
        bottomPadding: Theme.medium

        Label {
            width: parent.width
            visible: text !== "" && section.count === 0
            bottomPadding: Theme.tight
            wrapMode: Text.Wrap
            lineHeight: 1.2
            text: section.emptyText
            color: Theme.faint
        }
    }
}
