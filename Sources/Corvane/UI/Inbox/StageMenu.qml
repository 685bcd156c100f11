import QtQml
import Corvane

/// How far a deal is.
Menu {
    id: menu

    required property var names
    required property string current

    signal picked(stage: string)

    Instantiator {
        model: menu.names
        delegate: MenuItem {
            required property string modelData
            objectName: "stage." + modelData
            text: modelData
            checkable: true
            checked: menu.current === modelData
            onTriggered: menu.picked(modelData)
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
