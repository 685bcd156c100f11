#pragma once

#include "Store/Core/SqlConnection.h"
#include "Store/Search/SearchQuery.h"

namespace corvane {

/// A search result other than a message.
struct FoundRecord {
    SearchGroup group = SearchGroup::Work;
    QString kind; ///< "call", "transcript", "note", "deal", "task", "event", "context", "item", "decision", "ask", ...
    QString id; ///< of the row; of the call for a transcript
    QString personId; ///< empty if it belongs to nobody
    QString module; ///< of work, such as "ops"; may be empty
    QString contextId; ///< of work; may be empty
    QString title;
    QString detail; ///< a person, a state, a place
    QString text; ///< an excerpt of the text, around the words if it contains them
    qint64 ts = 0; ///< milliseconds since the epoch

    bool operator==(const FoundRecord&) const = default;
};

struct FoundRecords {
    QList<FoundRecord> records;
    bool failed = false; ///< the database could not be read
};

/// Where and when a search takes place.
struct SearchScope {
    QString workspaceId;
    qint64 nowMs = 0;
    int limit = 0; ///< of each group
};

/// By group, newest first within each; events by how near they are, one per title. Reads each table once. Missing
/// tables are empty.
FoundRecords findRecords(SqlConnection& db, const SearchQuery& query, const SearchScope& scope);

}
