import Corvane.Controls
import Corvane.Inbox

/// A line of a message's menu; hidden if the message does not have that action.
MenuItem {
    required property messageOffer offer

    visible: offer.id !== ""
    height: visible ? implicitHeight : 0
    enabled: offer.enabled
    text: offer.label
    Accessible.description: offer.help
}
