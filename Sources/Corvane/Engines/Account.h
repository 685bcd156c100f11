#pragma once

#include "Foundation/Channel.h"

#include <QJsonObject>
#include <QString>
#include <QUuid>
#include <optional>

namespace corvane {

/// A connection of the user to a network: a number, a mailbox, a bot.
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
    std::optional<bool> startAtBoot; ///< starts last at the program's start, on any channel, unless paused

    Channel channel() const { return channelFromRaw(channelRaw); }
    bool operator==(const Account&) const = default;
};

}
