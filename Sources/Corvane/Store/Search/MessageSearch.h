#pragma once

#include "Store/Core/LatestRead.h"
#include "Store/Search/IndexedSearch.h"

namespace corvane {

/// Searches all messages on a background thread. A newer search cancels an older one.
class MessageSearch {
public:
    explicit MessageSearch(LocalDB& db); ///< outlives the search

    /// `found` receives the rows of `searchMessages` at a later turn of the event loop; none if the database is not
    /// open.
    void start(const SearchQuery& query, int limit, std::function<void(FoundMessages)> found);
    void stop() { m_read.stop(); }

private:
    LocalDB& m_db;
    LatestRead m_read;
};

}
