#pragma once

#include "Foundation/Literals.h"
#include "Store/Sync/SyncQueries.h"

#include <QHash>
#include <QObject>

namespace corvane {

class DateWords;

/// The channels that are only synced through the web.
inline const QStringList webOnlyChannels { u"LINKEDIN"_s, u"EMAIL"_s };

/// A channel whose mirror is out of date.
struct WebStaleness {
    QString channel;
    qint64 newest = 0; ///< milliseconds since the epoch

    bool operator==(const WebStaleness&) const = default;
};

/// Only while the web sync has problems: the channels without a message for two hours. `newest` has each channel's
/// newest message time.
QList<WebStaleness> activeWebStaleness(const QString& channelFilter, const QList<SyncHealthRow>& health,
    const QHash<QString, qint64>& newest, qint64 nowMs);

QString stalenessText(const WebStaleness& staleness, const DateWords& words);

/// The notice about such a channel.
class StalenessBanner {
    Q_GADGET
    Q_PROPERTY(QString channel MEMBER channel)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(bool queued MEMBER queued)
public:
    QString channel;
    QString text;
    bool queued = false; ///< a retry was requested; until the web reports again

    bool operator==(const StalenessBanner&) const = default;
};

/// The state of the web mirror, as last read.
class WebMirror {
public:
    void refresh(LocalDB& db);
    void retry(LocalDB& db); ///< asks the web for a pull

    QList<StalenessBanner> banners(const QString& channelFilter, qint64 nowMs) const;

private:
    QList<SyncHealthRow> m_syncHealthRows;
    QHash<QString, qint64> m_newestWebChannelMessageAt;
    bool m_retryQueued = false;
};

}
