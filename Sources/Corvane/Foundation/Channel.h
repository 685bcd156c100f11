#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// A messaging network. `channelRaw` gives the word that is stored in rows and files.
enum class Channel { WhatsApp, LinkedIn, Email, Telegram, Discord, Slack, Instagram, Messenger, Sms, IMessage };

QString channelRaw(Channel channel); ///< such as "WHATSAPP"
Channel channelFromRaw(const std::optional<QString>& raw); ///< absent or unknown: WhatsApp
QString channelLabel(const QString& raw); ///< such as "WhatsApp"; an unknown word is capitalised

}
