import QtQuick
import QtQuick.Templates as T
import Corvane.Controls

/// A small window as high as its content. Escape dismisses it.
T.ApplicationWindow {
    id: window

    required property int fixedWidth
    property bool bordered: false ///< for a window without a frame of the desktop
    default property alias parts: column.data
    readonly property int fixedHeight: column.implicitHeight + Theme.large * 2

    signal dismissed()

    width: fixedWidth
    height: fixedHeight
    // A window of one size floats on tiling desktops.
    minimumWidth: fixedWidth
    maximumWidth: fixedWidth
    minimumHeight: fixedHeight
    maximumHeight: fixedHeight
    color: Theme.surface
    font: Qt.application.font
    onClosing: dismissed()

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: window.dismissed()

        Column {
            id: column
            x: Theme.large
            y: Theme.large
            width: parent.width - Theme.large * 2
            spacing: Theme.medium
        }
    }
    Rectangle {
        anchors.fill: parent
        visible: window.bordered
        color: Theme.none
        border.width: 1
        border.color: Theme.line
    }
}
