#pragma once

#include "Store/Search/MessageChanges.h"
#include "Store/Search/SearchQueries.h"

namespace corvane {

/// The same rows as `searchMessages`, found by the index. Nothing if the index cannot answer: it is still being built,
/// or the query contains nothing rare enough. `changed` are rows that the index has not taken in yet.
std::optional<QList<MessageHit>> searchByIndex(SqlConnection& database, SqlConnection& index, const SearchQuery& query,
    int limit, const MessageChanges::Rows& changed);

struct FoundMessages {
    QList<MessageHit> hits;
    std::optional<int> indexPercent; ///< how much the search index covers, while it is being built
    bool failed = false; ///< the database could not be read
};

/// The rows of `searchMessages`, found by the index beside the database if it can answer. Without `changed`, which only
/// the program that keeps the index knows, the database is asked for what changed since the index was last compared.
FoundMessages findMessages(SqlConnection& database, const SearchQuery& query, int limit,
    const std::optional<MessageChanges::Rows>& changed, const std::shared_ptr<const std::atomic<bool>>& stopped);

}
