import QtQuick
import QtQml
import Corvane.Controls

/// Filters by one word of a list, or by none.
MenuButton {
    id: button

    property string every
    property list<string> choices
    property string chosen
    property real widest: 128

    signal picked(word: string)

    width: Math.min(implicitWidth, widest)
    text: chosen || every
    MenuItem {
        checkable: true
        checked: button.chosen === ""
        text: button.every
        onTriggered: button.picked("")
    }
    Instantiator {
        model: button.choices.length // an open menu stays open while the words are reloaded
        delegate: MenuItem {
            required property int index
            readonly property string word: button.choices[index] ?? ""
            checkable: true
            checked: button.chosen === word
            text: word
            onTriggered: button.picked(word)
        }
        onObjectAdded: (index, item) => button.list.insertItem(index + 1, item)
        onObjectRemoved: (index, item) => button.list.removeItem(item)
    }
}
