import Corvane

/// A line of a message's menu, there where the message has that action.
MenuItem {
    required property var offer ///< {label, enabled, help}, or nothing

    visible: !!offer
    height: visible ? implicitHeight : 0
    enabled: offer?.enabled ?? false
    text: offer?.label ?? ""
    Accessible.description: offer?.help ?? ""
}
