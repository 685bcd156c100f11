#pragma once

#include "Foundation/Result.h"

#include <QStringList>
#include <atomic>
#include <memory>

namespace corvane {

/// How far a salvage is; written by its thread, read by any.
struct SalvageProgress {
    std::atomic<int> tables = 0; ///< begun
    std::atomic<int> allTables = 0; ///< 0 until the file has been copied
    std::atomic<qint64> rows = 0; ///< copied
    std::atomic<bool> stopped = false; ///< set by whoever no longer wants it
};

struct Salvaged {
    qint64 rows = 0;
    QStringList tornTables; ///< some of whose rows could not be read, or did not fit
};

/// Copies every row that can be read from the database at `damaged` into the one at `target`, which exists with the
/// current schema, is empty, and is nobody else's. Tables and columns that only the damaged one has are made there too.
/// Where pages cannot be read the rows around them are reached from both sides. The damaged file is only read: the work
/// is done on a copy beside `target`, which is removed. Takes long; for a thread of its own.
Result<Salvaged> salvage(const QString& damaged, const QString& target, SalvageProgress& progress);

}
