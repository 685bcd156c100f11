#pragma once

#include "Store/Core/SqlConnection.h"

namespace corvane {

// What the search index's file holds, for those who write it and those who read it: the table `state`, the names that
// occur (`name`), and a document for each message in the FTS5 table `text`, whose columns are `words` and, as marks,
// `conversation`, `sender` and `media`.

constexpr int documentSlotBits = 12; ///< documents of one millisecond: 4,096
constexpr qint64 lastNumberedTime = (1LL << 50) - 1; ///< messages of other times are not numbered

/// The first number that a document of that time may have.
qint64 documentNumberAt(qint64 ts);

/// The same on every machine and in every run.
qint64 indexHash(const QString& text);

/// One trigram that stands for a name. Another name may have the same one.
QString indexMark(const QString& name);

/// A value of `state`.
std::optional<qint64> indexValue(SqlConnection& index, const QString& name);

/// What lies at a rowid of the database's messages: tells whether it is still the one that was indexed.
qint64 indexProbe(SqlConnection& database, qint64 rowid);

}
