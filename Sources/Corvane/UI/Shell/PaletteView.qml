import QtQuick
import QtQuick.Templates as T
import Corvane.Controls
import Corvane.Inbox
import Corvane.Shell

/// The palette over the window: a few letters find a person or an action.
T.Popup {
    id: popup

    required property InboxView inbox
    readonly property CommandPalette palette: inbox.palette

    objectName: "palette"
    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.min(96, Math.round(parent.height * 0.12)) : 0
    width: 560
    height: Math.min(panel.implicitHeight, (parent?.height ?? 800) - y * 2)
    padding: 0
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    T.Overlay.modal: Rectangle { color: Theme.scrim }

    visible: inbox.showPalette
    onAboutToShow: {
        palette.open();
        field.text = palette.query;
        field.forceActiveFocus();
    }
    onClosed: inbox.showPalette = false
    Connections {
        target: popup.palette
        function onQueryChanged() {
            if (field.text !== popup.palette.query)
                field.text = popup.palette.query;
        }
    }

    background: Rectangle {
        radius: Theme.cardRadius
        color: Theme.surface
        border.width: 1
        border.color: Theme.line
        Shadow {}
    }
    contentItem: FocusScope {
        id: panel
        focus: true
        implicitHeight: field.height + 1 + lines.contentHeight + Theme.small * 2 + words.height
        Accessible.role: Accessible.Dialog
        Accessible.name: qsTr("Search and commands")

        T.TextField {
            id: field
            objectName: "palette.query"
            width: parent.width
            height: Theme.bar
            leftPadding: 48
            rightPadding: Theme.large
            verticalAlignment: TextInput.AlignVCenter
            font.pixelSize: Theme.title
            color: Theme.text
            placeholderText: qsTr("Go to a person, run an action, or search")
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentInk
            focus: true
            Accessible.name: placeholderText
            Accessible.searchEdit: true
            onTextEdited: popup.palette.query = text
            Keys.onDownPressed: popup.palette.moveDown()
            Keys.onUpPressed: popup.palette.moveUp()
            Keys.onReturnPressed: popup.palette.runHighlighted()
            Keys.onEnterPressed: popup.palette.runHighlighted()

            Icon {
                x: Theme.large
                anchors.verticalCenter: parent.verticalCenter
                name: "edit-find"
                size: 20
                color: Theme.faint
            }
            PlaceholderLabel {
                leftPadding: field.leftPadding
                rightPadding: field.rightPadding
                topPadding: field.topPadding
                bottomPadding: field.bottomPadding
                text: field.placeholderText
                font.pixelSize: field.font.pixelSize
                shown: !field.length && !field.preeditText
            }
        }
        Rectangle {
            id: edge
            anchors.top: field.bottom
            width: parent.width
            height: 1
            color: Theme.line
        }
        ListView {
            id: lines
            objectName: "palette.items"
            anchors.top: edge.bottom
            anchors.bottom: words.top
            anchors.margins: Theme.small
            anchors.left: parent.left
            anchors.right: parent.right
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            model: popup.palette.items
            currentIndex: popup.palette.index
            highlightMoveDuration: 0
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Found")
            T.ScrollBar.vertical: ScrollBar {}

            section.property: "section"
            section.delegate: SectionHeader {
                required property string section
                width: ListView.view.width
                leftPadding: Theme.small
                topPadding: Theme.small
                bottomPadding: Theme.tight
                text: section
            }
            delegate: PaletteRow {
                width: ListView.view.width
                onClicked: popup.palette.run(index)
            }
        }
        Label {
            id: words
            anchors.bottom: parent.bottom
            x: Theme.large
            width: parent.width - Theme.large * 2
            bottomPadding: Theme.medium
            text: popup.palette.searchWords
            font.pixelSize: Theme.meta
            color: Theme.faint
        }
    }
}
