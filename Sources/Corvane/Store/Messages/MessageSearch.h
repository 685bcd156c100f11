#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Store/Messages/InboxQueries.h"

#include <atomic>

namespace corvane {

/// The search over every message, which may take seconds, away from the main thread. One runs at a time: a newer
/// one stops an older one, whose rows never come home.
class MessageSearch {
public:
    explicit MessageSearch(const LocalDB& db); ///< outlives the search
    ~MessageSearch(); ///< stops what runs and waits for its end, a moment

    /// `found` gets the rows of `searchMessages` at a later turn of the loop; none where the database is not open.
    void start(const QString& query, int limit, std::function<void(QList<MessageHit>)> found);
    void stop();

private:
    const LocalDB& m_db;
    std::shared_ptr<std::atomic<bool>> m_stopped;
    BackgroundQueue m_queue;
};

}
