#pragma once

#include "Store/Search/MessageChanges.h"
#include "Store/Search/SearchQueries.h"

namespace corvane {

/// The rows of `searchMessages`, in its order, by the index; nothing where it cannot answer: it is being built, or
/// nothing in the query is rare enough to look for. `changed` are rows that the index does not know as they are.
std::optional<QList<MessageHit>> searchByIndex(SqlConnection& database, SqlConnection& index, const SearchQuery& query,
    int limit, const MessageChanges::Rows& changed);

/// How much of the messages the index covers while it is being built, else nothing.
std::optional<int> percentBuilt(SqlConnection& index);

}
