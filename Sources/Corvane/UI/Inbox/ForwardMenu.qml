import QtQml
import Corvane

/// To whom a message goes as a draft.
Menu {
    id: menu

    required property string messageId
    required property QtObject actions
    property var targets: []

    sign: "mail-forward"

    Instantiator {
        model: menu.targets
        delegate: MenuItem {
            required property var modelData
            text: modelData.name
            key: modelData.detail
            onTriggered: menu.actions.forward(menu.messageId, modelData.id)
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
