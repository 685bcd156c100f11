import Corvane.Controls
import QtQuick

/// The glyph of a channel, told apart by its shape and never by its colour.
Icon {
    property string channel ///< such as "WHATSAPP"

    size: 14
    name: channel ? "channel-" + channel.toLowerCase() : ""
    color: Theme.soft
}
