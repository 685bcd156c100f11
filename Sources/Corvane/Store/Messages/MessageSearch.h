#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Store/Messages/InboxQueries.h"

#include <atomic>

namespace corvane {

/// Searches all messages, which may take seconds, on a background thread. One search runs at a time: a newer one
/// cancels an older one, whose rows are never delivered.
class MessageSearch {
public:
    explicit MessageSearch(const LocalDB& db); ///< outlives the search
    ~MessageSearch(); ///< cancels a running search and waits for it, briefly

    /// `found` receives the rows of `searchMessages` at a later turn of the event loop; none if the database is not
    /// open.
    void start(const QString& query, int limit, std::function<void(QList<MessageHit>)> found);
    void stop();

private:
    const LocalDB& m_db;
    std::shared_ptr<std::atomic<bool>> m_stopped;
    BackgroundQueue m_queue;
};

}
