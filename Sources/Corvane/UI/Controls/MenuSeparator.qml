import Corvane.Controls
import QtQuick
import QtQuick.Templates as T

T.MenuSeparator {
    implicitHeight: 9
    implicitWidth: 40
    topPadding: 4
    bottomPadding: 4
    contentItem: Rectangle {
        implicitHeight: 1
        height: 1
        color: Theme.line
    }
}
