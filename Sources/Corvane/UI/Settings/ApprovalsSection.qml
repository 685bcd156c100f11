import QtQuick
import Corvane

/// From where approvals can be given.
Column {
    id: section

    required property QtObject settings

    spacing: Theme.large

    ControlChatCard {
        width: parent.width
        chat: section.settings.controlChat
    }
}
