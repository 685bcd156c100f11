import QtQuick
import Corvane.Controls

/// A few options, one of which is selected.
Column {
    id: row

    property string label
    required property list<string> choices
    property string chosen

    signal picked(word: string)

    spacing: Theme.tight
    Label {
        text: row.label
        font.pixelSize: Theme.meta
        color: Theme.soft
    }
    Row {
        spacing: Theme.tight
        Repeater {
            model: row.choices.length
            Chip {
                required property int index
                readonly property string word: row.choices[index] ?? ""
                objectName: "choice:" + word
                checkable: true
                checked: row.chosen === word
                text: word.charAt(0).toUpperCase() + word.slice(1)
                onClicked: {
                    checked = Qt.binding(() => row.chosen === word);
                    row.picked(word);
                }
            }
        }
    }
}
