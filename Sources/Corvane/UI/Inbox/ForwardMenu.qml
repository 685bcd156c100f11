import QtQml
import Corvane.Controls
import Corvane.Inbox

/// The person to whom a message is forwarded as a draft.
Menu {
    id: forwarding

    required property string messageId
    required property MessageActions actions
    property list<contactChoice> targets

    sign: "mail-forward"

    Instantiator {
        model: forwarding.targets
        delegate: MenuItem {
            required property contactChoice modelData
            text: modelData.name
            key: modelData.detail
            onTriggered: forwarding.actions.forward(forwarding.messageId, modelData.id)
        }
        onObjectAdded: (index, object) => forwarding.insertItem(index, object)
        onObjectRemoved: (index, object) => forwarding.removeItem(object)
    }
}
