import Corvane.Controls
import QtQuick

/// What an empty field asks for.
Label {
    required property var field ///< of one line or of several, which have no type in common

    x: field.leftPadding
    y: field.topPadding
    width: field.width - field.leftPadding - field.rightPadding
    height: field.height - field.topPadding - field.bottomPadding
    verticalAlignment: Text.AlignVCenter
    visible: !field.length && !field.preeditText
    text: field.placeholderText
    color: field.placeholderTextColor
    Accessible.ignored: true
}
