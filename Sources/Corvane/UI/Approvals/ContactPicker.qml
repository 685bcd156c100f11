import QtQuick
import QtQuick.Templates as T
import Corvane.Approvals
import Corvane.Controls

/// Picks the contact that a CRM change is about: type a name and choose a match.
Column {
    id: picker

    required property ContactPick link ///< the view model
    property alias field: search

    spacing: Theme.small
    Accessible.role: Accessible.Grouping
    Accessible.name: search.placeholderText

    SearchField {
        id: search
        objectName: "contactPicker.search"
        width: parent.width
        placeholderText: picker.link.searchText
        text: picker.link.query
        onTextEdited: picker.link.query = text
        onCleared: picker.link.query = ""
        onLeave: if (rows.count) rows.forceActiveFocus(Qt.TabFocusReason)
    }
    ListView {
        id: rows
        objectName: "contactPicker.list"
        width: parent.width
        height: Math.min(contentHeight, 36 * 4.5) // half a row shows that there are more
        visible: count > 0
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: picker.link.people
        onModelChanged: currentIndex = 0
        activeFocusOnTab: true
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        Accessible.role: Accessible.List
        Accessible.name: search.placeholderText
        T.ScrollBar.vertical: ScrollBar {}
        Keys.onReturnPressed: (currentItem as T.AbstractButton)?.clicked()
        Keys.onSpacePressed: (currentItem as T.AbstractButton)?.clicked()

        KeyboardFocus { id: keyboard; target: rows }

        delegate: T.AbstractButton {
            id: row

            required property contactChoice modelData

            objectName: "contactPicker:" + modelData.id
            width: ListView.view.width
            implicitHeight: 36
            hoverEnabled: true
            focusPolicy: Qt.NoFocus
            text: modelData.name
            Accessible.role: Accessible.Button
            Accessible.name: modelData.name + ", " + modelData.detail
            onClicked: picker.link.choose(modelData.id)

            background: Rectangle {
                radius: Theme.controlRadius
                color: row.hovered ? Theme.raised : Theme.none
                border.width: keyboard.shown && row.ListView.isCurrentItem ? 2 : 0
                border.color: Theme.accent
            }
            contentItem: Item {
                ChannelMark {
                    id: mark
                    x: Theme.medium
                    anchors.verticalCenter: parent.verticalCenter
                    channel: row.modelData.channel
                }
                Label {
                    anchors.left: mark.right
                    anchors.leftMargin: Theme.small
                    anchors.right: where.left
                    anchors.rightMargin: Theme.small
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.text
                }
                Label {
                    id: where
                    anchors.right: parent.right
                    anchors.rightMargin: Theme.medium
                    anchors.verticalCenter: parent.verticalCenter
                    text: row.modelData.detail
                    font.pixelSize: Theme.meta
                    color: Theme.faint
                }
            }
        }
    }
    Label {
        width: parent.width
        visible: rows.count === 0
        text: picker.link.emptyText
        color: Theme.soft
    }
    Label {
        width: parent.width
        visible: text !== ""
        text: picker.link.errorText
        color: Theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Button {
        objectName: "contactPicker.cancel"
        kind: "quiet"
        text: qsTr("Cancel")
        onClicked: picker.link.cancel()
    }
}
