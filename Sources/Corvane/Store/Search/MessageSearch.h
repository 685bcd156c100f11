#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Store/Search/SearchQueries.h"

#include <atomic>

namespace corvane {

class LocalDB;

struct FoundMessages {
    QList<MessageHit> hits;
    std::optional<int> indexPercent; ///< how much the search index covers, while it is being built
};

/// Searches all messages, which may take seconds, on a background thread. One search runs at a time: a newer one
/// cancels an older one, whose rows are never delivered.
class MessageSearch {
public:
    explicit MessageSearch(LocalDB& db); ///< outlives the search
    ~MessageSearch(); ///< cancels a running search and waits for it, briefly

    /// `found` receives the rows of `searchMessages` at a later turn of the event loop; none if the database is not
    /// open.
    void start(const QString& query, int limit, std::function<void(FoundMessages)> found);
    void stop();

private:
    LocalDB& m_db;
    std::shared_ptr<std::atomic<bool>> m_stopped;
    BackgroundQueue m_queue;
};

}
