#pragma once

#include "Store/Core/SqlConnection.h"
#include "Store/Search/SearchQuery.h"

namespace corvane {

/// Something else than a message that a search found.
struct FoundRecord {
    SearchGroup group = SearchGroup::Work;
    QString kind; ///< "call", "transcript", "note", "deal", "task", "event", "context", "item", "decision", "ask", ...
    QString id; ///< of the row; of the call for a transcript
    QString personId; ///< empty if it belongs to nobody
    QString module; ///< of work, such as "ops"; may be empty
    QString contextId; ///< of work; may be empty
    QString title;
    QString detail; ///< a person, a state, a place
    QString text; ///< a piece of a longer text, where the words stand if they stand there
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

/// In the order of the groups, and in each the newest first; events by how near they are, one of each title. Reads each
/// table once. Tables that are not there hold nothing.
FoundRecords findRecords(SqlConnection& db, const SearchQuery& query, const SearchScope& scope);

}
