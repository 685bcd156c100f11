#include "Store/Search/SearchIndexer.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"

namespace corvane {

namespace {

constexpr Milliseconds changePause { 1000 };
constexpr Milliseconds stepPause { 20 }; // leaves time for other disk access
constexpr Milliseconds sweepPause { 100 };
constexpr qint64 sweepEveryMs = 600'000;
constexpr int failuresBeforeGivingUp = 3;

}

SearchIndexer::SearchIndexer(LocalDB& db, Scheduler& scheduler)
    : m_db(db)
    , m_scheduler(scheduler)
    , m_soon(scheduler, changePause, [this] { step(); })
{
}

SearchIndexer::~SearchIndexer()
{
    m_db.watch().messageChanges().onChange({});
    m_stopped->store(true);
}

void SearchIndexer::start()
{
    MessageChanges& changes = m_db.watch().messageChanges();
    if (changes.isFollowed() || m_db.path().isEmpty() || m_db.path() == u":memory:")
        return;
    changes.onChange([this] { m_soon.request(); });
    m_sweepFrom = 0; // changes that the last run did not index, and changes by other programs
    m_db.watch().on(StoreSubject::Messages, this, [this] {
        if (!m_sweepFrom && m_scheduler.nowMs() - m_sweptMs.value_or(0) >= sweepEveryMs)
            m_sweepFrom = 0;
        m_soon.request();
    });
    m_soon.request();
}

void SearchIndexer::step()
{
    if (m_working) {
        m_wanted = true;
        return;
    }
    if (!m_db.isSound() || m_failures >= failuresBeforeGivingUp)
        return;
    m_working = true;
    m_queue.run<IndexState>(
        [path = m_db.path(), changed = m_db.watch().messageChanges().take(), stopped = m_stopped] {
            if (stopped->load())
                return IndexState();
            SearchIndex index(SearchIndex::pathBeside(path), stopped);
            return index.advance(*SqlConnection::reader(path, stopped), changed);
        },
        [this](const IndexState& state) { advanced(state); });
}

void SearchIndexer::advanced(const IndexState& state)
{
    MessageChanges& changes = m_db.watch().messageChanges();
    m_working = false;
    if (!state.usable) {
        changes.notTaken();
        if (state.faulty)
            SearchIndex::remove(SearchIndex::pathBeside(m_db.path()));
        if (++m_failures < failuresBeforeGivingUp)
            later(changePause);
        else
            log(u"SearchIndexer: the search index cannot be kept; searches read every message"_s);
        return;
    }
    m_failures = 0;
    changes.taken();
    m_state = state;
    Q_EMIT stateChanged();
    if (state.more || !changes.all().isEmpty() || std::exchange(m_wanted, false))
        later(stepPause);
    else if (m_sweepFrom)
        sweep();
}

void SearchIndexer::sweep()
{
    if (m_sweepFrom == 0)
        m_sweptMs = m_scheduler.nowMs();
    m_working = true;
    m_queue.run<std::optional<qint64>>(
        [path = m_db.path(), from = *m_sweepFrom, since = *m_sweptMs, stopped = m_stopped]() -> std::optional<qint64> {
            if (stopped->load())
                return std::nullopt;
            SearchIndex index(SearchIndex::pathBeside(path), stopped);
            return index.sweep(*SqlConnection::reader(path, stopped), from, since);
        },
        [this](std::optional<qint64> rowid) { sweptTo(rowid); });
}

void SearchIndexer::sweptTo(std::optional<qint64> rowid)
{
    m_working = false;
    m_sweepFrom = rowid;
    if (rowid || std::exchange(m_wanted, false))
        later(sweepPause);
}

void SearchIndexer::later(Milliseconds pause)
{
    m_next = m_scheduler.after(pause, [this] { step(); });
}

}
