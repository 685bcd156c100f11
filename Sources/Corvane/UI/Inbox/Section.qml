import QtQuick
import QtQuick.Templates as T
import Corvane

/// A part of the contact pane that folds, and stays as it was left.
Column {
    id: section

    default property alias content: inner.data
    required property QtObject layout
    required property string name
    property string title
    property bool open: layout.sectionOpen(name)

    T.AbstractButton {
        id: head
        width: parent.width
        height: 36
        focusPolicy: Qt.TabFocus
        text: section.title
        Accessible.name: section.title
        Accessible.checkable: true
        Accessible.checked: section.open
        Keys.onReturnPressed: clicked()
        onClicked: {
            section.open = !section.open;
            section.layout.setSectionOpen(section.name, section.open);
        }
        contentItem: Item {
            SectionHeader {
                x: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                text: section.title
                Accessible.ignored: true
            }
            Icon {
                anchors.right: parent.right
                anchors.rightMargin: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                name: section.open ? "go-up" : "go-down"
                size: 14
                color: Theme.faint
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
        bottomPadding: Theme.small
    }
}
