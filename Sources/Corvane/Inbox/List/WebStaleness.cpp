#include "Inbox/List/WebStaleness.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Messages/IngestQueries.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 staleAfterMs = 7'200'000;

bool isDegraded(const SyncHealthRow& row)
{
    const QString status = row.status.toLower();
    return (row.source == u"bootstrap"_s || row.source == u"inbox"_s)
        && (status == u"error"_s || status == u"waiting_for_web"_s);
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
    return u"%1 last synced %2 — web connection degraded"_s.arg(
        channelLabel(staleness.channel), words.ago(staleness.newest));
}

void WebMirror::refresh(LocalDB& db)
{
    const QList<SyncHealthRow> rows = fetchSyncHealthRows(db);
    if (rows != m_syncHealthRows)
        m_retryQueued = false;
    m_syncHealthRows = rows;
    if (std::ranges::none_of(rows, isDegraded))
        return;
    for (const QString& channel : webOnlyChannels)
        m_newestWebChannelMessageAt.insert(channel, newestConversationTimestamp(db, channel));
}

void WebMirror::retry(LocalDB& db)
{
    queueWebPullSync(db, u"inbox"_s);
    m_retryQueued = true;
}

QList<StalenessBanner> WebMirror::banners(const QString& channelFilter, qint64 nowMs) const
{
    const auto stale = activeWebStaleness(channelFilter, m_syncHealthRows, m_newestWebChannelMessageAt, nowMs);
    if (stale.isEmpty())
        return {};
    const DateWords words(nowMs);
    QList<StalenessBanner> banners;
    for (const WebStaleness& each : stale)
        banners.append({ each.channel, stalenessText(each, words), m_retryQueued });
    return banners;
}

}
