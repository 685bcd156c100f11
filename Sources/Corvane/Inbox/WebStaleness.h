#pragma once

#include "Store/SyncQueries.h"

#include <QHash>

namespace corvane {

class DateWords;

/// The channels that come only through the web.
inline const QStringList webOnlyChannels { QStringLiteral("LINKEDIN"), QStringLiteral("EMAIL") };

/// A channel whose mirror no longer keeps up.
struct WebStaleness {
    QString channel;
    qint64 newest = 0; ///< milliseconds since the epoch

    bool operator==(const WebStaleness&) const = default;
};

/// Only while the web is in trouble: the channels without a message for two hours. `newest` holds each
/// channel's newest message time.
QList<WebStaleness> activeWebStaleness(const QString& channelFilter, const QList<SyncHealthRow>& health,
    const QHash<QString, qint64>& newest, qint64 nowMs);

QString stalenessText(const WebStaleness& staleness, const DateWords& words);

}
