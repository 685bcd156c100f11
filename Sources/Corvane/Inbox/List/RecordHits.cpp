#include "Inbox/List/RecordHits.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/Workspaces.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int groupLimit = 5;
constexpr int loneGroupLimit = 60;
constexpr Milliseconds refreshPeriod { 2000 };

int limitOf(const SearchQuery& query)
{
    return query.group ? loneGroupLimit : groupLimit;
}

}

RecordHits::RecordHits(LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_refreshSoon(scheduler, refreshPeriod, [this] { search(); })
    , m_read(db)
{
}

void RecordHits::find(const SearchQuery& query)
{
    if (query == m_query) {
        if (!query.isEmpty())
            m_refreshSoon.request();
        return;
    }
    m_query = query;
    m_pending = !query.isEmpty();
    if (m_pending)
        return search();
    m_read.stop();
    show({});
}

void RecordHits::search()
{
    if (m_query.isEmpty())
        return;
    const SearchScope scope { activeWorkspaceId(m_db), m_scheduler.nowMs(), limitOf(m_query) + 1 };
    m_read.start<FoundRecords>([query = m_query, scope](SqlConnection& db,
                                   const LatestRead::Stopped&) { return findRecords(db, query, scope); },
        [this](const FoundRecords& found) { show(found); });
}

void RecordHits::show(const FoundRecords& found)
{
    m_pending = false;
    m_failed = found.failed;
    m_records = found.records;
    m_model.assign(recordHitItems(m_records, m_query.text, limitOf(m_query), DateWords(m_scheduler.nowMs())));
    Q_EMIT changed();
}

QString RecordHits::notice() const
{
    return m_failed ? u"Calls, notes, events and work could not be searched."_s : QString();
}

std::optional<FoundRecord> RecordHits::record(const QString& key) const
{
    const auto found
        = std::ranges::find_if(m_records, [&](const FoundRecord& record) { return recordKey(record) == key; });
    return found == m_records.end() ? std::nullopt : std::optional(*found);
}

}
