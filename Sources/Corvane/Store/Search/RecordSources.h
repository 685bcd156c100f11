#pragma once

#include "Store/Core/Table.h"
#include "Store/Search/RecordQueries.h"

namespace corvane {

/// A table that is searched, with the alias r and a rowid. Its statement may use the parameters ?1, the workspace; ?2,
/// now; ?4, the text; ?5, the LIKE pattern for it.
struct RecordSource {
    SearchGroup group;
    Table<FoundRecord> table;
    QString joins; ///< with at most one row each; including the conditions that always apply
    QStringList words; ///< columns that may contain the text
    QStringList people; ///< columns with names of people
    QStringList places;
    QString time; ///< in milliseconds since the epoch
    QString order;
};

const QList<RecordSource>& recordSources(); ///< by group

}
