#include "Inbox/List/MessageHits.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"

namespace corvane {

namespace {

constexpr int hitLimit = 60;
constexpr Milliseconds patience { 150 };
// A search reads every message; new messages need not restart it at once.
constexpr Milliseconds refreshPeriod { 2000 };

}

MessageHits::MessageHits(LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
    , m_refreshSoon(scheduler, refreshPeriod,
          [this] {
              if (m_running)
                  m_again = true; // restarting a long search for every message would never finish
              else
                  search();
          })
    , m_search(db)
{
}

void MessageHits::find(const SearchQuery& asked)
{
    const SearchQuery query = asked.asksFor(SearchGroup::Messages) ? asked : SearchQuery();
    if (query == m_query) {
        if (!query.isEmpty())
            m_refreshSoon.request();
        return;
    }
    m_query = query;
    m_pending = !query.isEmpty();
    m_again = false;
    if (!m_pending) {
        m_search.stop();
        m_running = false;
        show({});
        return;
    }
    if (!m_patience && !m_searching) {
        m_patience = m_scheduler.after(patience, [this] {
            m_patience.reset();
            m_searching = true;
            m_model.assign({});
            Q_EMIT changed();
        });
    }
    search();
}

void MessageHits::search()
{
    if (m_query.isEmpty())
        return;
    m_running = true;
    m_search.start(m_query, hitLimit, [this](const FoundMessages& found) {
        m_running = false;
        m_pending = false;
        show(found);
        if (std::exchange(m_again, false))
            m_refreshSoon.request();
    });
}

QString MessageHits::title() const
{
    if (m_searching)
        return u"Searching the messages…"_s;
    if (m_failed)
        return u"The messages could not be searched"_s;
    return m_indexPercent ? u"Messages · the search index is %1 % built"_s.arg(*m_indexPercent) : u"Messages"_s;
}

void MessageHits::show(const FoundMessages& found)
{
    m_indexPercent = found.indexPercent;
    m_failed = found.failed;
    m_patience.reset();
    m_searching = false;
    m_model.assign(messageHitItems(found.hits, m_query.text, DateWords(m_scheduler.nowMs())));
    Q_EMIT changed();
}

}
