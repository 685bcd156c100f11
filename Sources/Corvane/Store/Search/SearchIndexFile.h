#pragma once

#include "Store/Core/SqlConnection.h"

namespace corvane {

// The format of the search index's file: the table `state`, the known names (`name`), and one document per
// message in the FTS5 table `text`, with the column `words` and, as marks,
// `conversation`, `sender` and `media`.

constexpr int documentSlotBits = 12; ///< documents of one millisecond: 4,096
constexpr qint64 lastNumberedTime = (1LL << 50) - 1; ///< messages at other times are not indexed

/// The first document number of that time.
qint64 documentNumberAt(qint64 ts);

/// A stable hash: the same on every machine and in every run.
qint64 indexHash(const QString& text);

/// A trigram that represents a name. Different names may share one.
QString indexMark(const QString& name);

/// A value of `state`.
std::optional<qint64> indexValue(SqlConnection& index, const QString& name);

/// Identifies the message at a rowid, to detect whether it is still the indexed one.
qint64 indexProbe(SqlConnection& database, qint64 rowid);

}
