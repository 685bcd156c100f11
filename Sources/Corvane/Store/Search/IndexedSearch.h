#pragma once

#include "Store/Search/MessageChanges.h"
#include "Store/Search/SearchQueries.h"

namespace corvane {

/// The same rows as `searchMessages`, found by the index. Nothing if the index cannot answer: it is still being built,
/// or the query contains nothing rare enough. `changed` are rows that the index has not taken in yet.
std::optional<QList<MessageHit>> searchByIndex(SqlConnection& database, SqlConnection& index, const SearchQuery& query,
    int limit, const MessageChanges::Rows& changed);

/// The percentage of messages that the index covers while it is being built, else nothing.
std::optional<int> percentBuilt(SqlConnection& index);

}
