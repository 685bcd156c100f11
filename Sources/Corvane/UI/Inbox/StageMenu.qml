import QtQml
import Corvane.Controls
import Corvane.Inbox

/// How far a deal is.
Menu {
    id: stages

    required property list<string> names
    required property string current

    signal picked(stage: string)

    Instantiator {
        model: stages.names
        delegate: MenuItem {
            required property string modelData
            objectName: "stage." + modelData
            text: modelData
            checkable: true
            checked: stages.current === modelData
            onTriggered: stages.picked(modelData)
        }
        onObjectAdded: (index, object) => stages.insertItem(index, object)
        onObjectRemoved: (index, object) => stages.removeItem(object)
    }
}
