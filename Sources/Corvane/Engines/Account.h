#pragma once

#include <QJsonObject>
#include <QString>
#include <QUuid>
#include <optional>

namespace corvane {

/// A messaging network. `channelRaw` gives the word that rows and files hold.
enum class Channel { WhatsApp, LinkedIn, Email, Telegram, Discord, Slack, Instagram, Messenger, Sms, IMessage };

QString channelRaw(Channel channel); ///< such as "WHATSAPP"
Channel channelFromRaw(const std::optional<QString>& raw); ///< absent or unknown counts as WhatsApp
QString channelLabel(const QString& raw); ///< such as "WhatsApp"; an unknown word comes out capitalised

/// One connection of the user to a network: a number, a mailbox, a bot.
struct Account {
    QUuid id;
    QString name;
    QString slug; ///< unique, URL-safe, never changes; the account's name in every row
    bool mcpEnabled = true;
    int mcpPort = 0;
    bool autoStart = true;
    std::optional<QString> channelRaw;
    std::optional<QString> chromeProfile;
    std::optional<QString> email;
    std::optional<bool> paused;

    Channel channel() const { return channelFromRaw(channelRaw); }
    bool operator==(const Account&) const = default;
};

}
