#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Coalescer.h"
#include "Store/Search/SearchIndex.h"

#include <QObject>

namespace corvane {

class LocalDB;

/// Keeps the search index up to date, in the background and in small steps: builds it, indexes what this program
/// writes, and regularly sweeps over all messages for changes by other programs. An index that cannot be written is
/// removed; searches then read every message.
class SearchIndexer : public QObject {
    Q_OBJECT
public:
    /// Both outlive the object.
    SearchIndexer(LocalDB& db, Scheduler& scheduler);
    ~SearchIndexer() override;

    void start(); ///< may be called again; does nothing for a database in memory

    const IndexState& state() const { return m_state; }

Q_SIGNALS:
    void stateChanged();

private:
    void step();
    void advanced(const IndexState& state);
    void sweep();
    void sweptTo(std::optional<qint64> rowid);
    void later(Milliseconds pause);

    LocalDB& m_db;
    Scheduler& m_scheduler;
    IndexState m_state;
    bool m_working = false;
    bool m_wanted = false; ///< something changed while a step ran
    int m_failures = 0; ///< in a row
    std::optional<qint64> m_sweepFrom; ///< while a sweep is due or running
    std::optional<qint64> m_sweptMs; ///< when the last one started
    std::unique_ptr<Timer> m_next;
    Coalescer m_soon;
    std::shared_ptr<std::atomic<bool>> m_stopped = std::make_shared<std::atomic<bool>>(false);
    BackgroundQueue m_queue;
};

}
