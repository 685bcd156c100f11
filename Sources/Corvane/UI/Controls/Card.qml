import Corvane.Controls
import QtQuick

/// A framed group of content.
Rectangle {
    id: card

    default property alias content: inner.data
    property int padding: Theme.large

    implicitWidth: inner.implicitWidth + padding * 2
    implicitHeight: inner.implicitHeight + padding * 2
    radius: Theme.cardRadius
    color: Theme.surface
    border.width: 1
    border.color: Theme.line

    Column {
        id: inner
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: card.padding
        spacing: Theme.medium
    }
}
