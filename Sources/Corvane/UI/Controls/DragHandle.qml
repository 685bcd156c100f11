import Corvane.Controls
import QtQuick

/// The edge between two panes; dragging it reports the wanted width of the pane, the arrow keys move it too.
Item {
    id: handle

    property int paneWidth: 0
    property bool paneIsRight: false ///< the pane stands to the right of the handle
    property string name

    signal moved(int width)

    width: 1
    z: 5
    activeFocusOnTab: true
    Accessible.role: Accessible.Splitter
    Accessible.name: name
    Keys.onLeftPressed: moved(paneWidth + (paneIsRight ? 16 : -16))
    Keys.onRightPressed: moved(paneWidth + (paneIsRight ? -16 : 16))

    Rectangle {
        anchors.fill: parent
        color: Theme.line
    }
    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 3
        height: parent.height
        radius: 1
        color: Theme.accent
        visible: handle.activeFocus || drag.active || hover.hovered
        opacity: handle.activeFocus || drag.active ? 1 : 0.5
    }
    Item {
        anchors.fill: parent
        anchors.margins: -4
        anchors.topMargin: 0
        anchors.bottomMargin: 0
        HoverHandler { id: hover; cursorShape: Qt.SplitHCursor }
        DragHandler {
            id: drag
            property int startWidth
            target: null
            yAxis.enabled: false
            onActiveChanged: if (active) startWidth = handle.paneWidth
            onTranslationChanged: if (active)
                handle.moved(startWidth + (handle.paneIsRight ? -translation.x : translation.x))
        }
    }
}
