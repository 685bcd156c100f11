import Corvane.Controls
import Corvane.Inbox

/// A line of a message's menu, there where the message has that action.
MenuItem {
    required property messageOffer offer

    visible: offer.id !== ""
    height: visible ? implicitHeight : 0
    enabled: offer.enabled
    text: offer.label
    Accessible.description: offer.help
}
