#include "Inbox/WebStaleness.h"

#include "Engines/Account.h"
#include "Inbox/DateWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 staleAfterMs = 7'200'000;

bool isDegraded(const SyncHealthRow& row)
{
    const QString status = row.status.toLower();
    return (row.source == QStringLiteral("bootstrap") || row.source == QStringLiteral("inbox"))
        && (status == QStringLiteral("error") || status == QStringLiteral("waiting_for_web"));
}

}

QList<WebStaleness> activeWebStaleness(const QString& channelFilter, const QList<SyncHealthRow>& health,
    const QHash<QString, qint64>& newest, qint64 nowMs)
{
    QList<WebStaleness> stale;
    if (std::ranges::none_of(health, isDegraded))
        return stale;
    for (const QString& channel : webOnlyChannels) {
        const qint64 time = newest.value(channel);
        if ((channelFilter.isEmpty() || channelFilter == channel) && time >= 1 && time < nowMs - staleAfterMs)
            stale.append({ channel, time });
    }
    return stale;
}

QString stalenessText(const WebStaleness& staleness, const DateWords& words)
{
    return QStringLiteral("%1 last synced %2 — web connection degraded")
        .arg(channelLabel(staleness.channel), words.ago(staleness.newest));
}

}
