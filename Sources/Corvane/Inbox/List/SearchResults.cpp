#include "Inbox/List/SearchResults.h"

#include "Foundation/Literals.h"
#include "Inbox/List/ListFilter.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int fewMessages = 8; ///< so that the records below are in reach

}

SearchResults::SearchResults(LocalDB& db, Scheduler& scheduler, ListFilter& filter, QObject* parent)
    : QObject(parent)
    , m_filter(filter)
    , m_hits(db, scheduler)
    , m_records(db, scheduler)
{
    connect(&m_hits, &MessageHits::changed, this, &SearchResults::changed);
    connect(&m_records, &RecordHits::changed, this, &SearchResults::changed);
}

void SearchResults::find(const SearchQuery& query)
{
    m_hits.find(query);
    m_records.find(query);
}

const QString& SearchResults::words() const
{
    return m_filter.state().wanted.text;
}

bool SearchResults::isEmpty() const
{
    return !messagesShown() && m_records.rows().isEmpty() && recordsNotice().isEmpty() && !pending();
}

int SearchResults::messagesAtFirst() const
{
    const int found = int(m_hits.rows().size());
    return m_records.rows().isEmpty() ? found : std::min(found, fewMessages);
}

QString SearchResults::moreMessages() const
{
    return messagesAtFirst() < m_hits.rows().size() ? u"All messages"_s : QString();
}

QString SearchResults::personOf(const QString& messageId) const
{
    const auto& hits = m_hits.rows();
    const auto hit = std::ranges::find(hits, messageId, &MessageHitItem::id);
    return hit == hits.end() ? QString() : hit->contactId;
}

void SearchResults::openRecord(const QString& key)
{
    if (const auto record = m_records.record(key))
        Q_EMIT recordChosen(*record, words());
}

void SearchResults::showAllMessages()
{
    narrowTo(SearchGroup::Messages);
}

void SearchResults::showGroup(const QString& key)
{
    if (const auto record = m_records.record(key))
        narrowTo(record->group);
}

void SearchResults::narrowTo(SearchGroup group)
{
    m_filter.searchFor(m_filter.search().trimmed() + u" in:"_s + groupWord(group));
}

}
