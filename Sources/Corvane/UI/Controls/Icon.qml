import Corvane.Controls
import QtQuick
import QtQuick.Window

/// A stroke icon in the colour of the text beside it.
Image {
    id: icon

    required property string name
    property int size: 16
    property color color: Theme.soft

    width: size
    height: size
    sourceSize: Qt.size(size * Screen.devicePixelRatio, size * Screen.devicePixelRatio)
    source: name ? "image://icon/" + name + "/" + color.toString().slice(-6) : ""
    Accessible.ignored: true
}
