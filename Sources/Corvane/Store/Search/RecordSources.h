#pragma once

#include "Store/Core/Table.h"
#include "Store/Search/RecordQueries.h"

namespace corvane {

/// A table that a search looks through. Its statement may use the parameters ?1, the workspace; ?2, now; ?4, the text.
struct RecordSource {
    SearchGroup group;
    Table<FoundRecord> table;
    QString joins; ///< up to the conditions that always hold
    QStringList words; ///< columns that may hold the text
    QStringList people; ///< columns that name somebody
    QStringList places;
    QString time; ///< in milliseconds since the epoch
    QString order;
};

const QList<RecordSource>& recordSources(); ///< by group

}
