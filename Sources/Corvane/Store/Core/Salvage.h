#pragma once

#include "Foundation/Result.h"

#include <QStringList>
#include <atomic>
#include <memory>

namespace corvane {

/// The progress of a recovery; written by its thread, read by any.
struct SalvageProgress {
    std::atomic<int> tables = 0; ///< started
    std::atomic<int> allTables = 0; ///< 0 until the file has been copied
    std::atomic<qint64> rows = 0; ///< copied
    std::atomic<bool> stopped = false; ///< set to cancel it
};

struct Salvaged {
    qint64 rows = 0;
    QStringList tornTables; ///< tables with rows that could not be read, or did not fit
};

/// Copies every readable row from the database at `damaged` into the one at `target`, which exists with the current
/// schema, is empty and not shared. Tables and columns that only the damaged file has are created. Rows around
/// unreadable pages are reached from both sides. The damaged file is only read: the work is done on a copy beside
/// `target`, which is deleted. Slow; run it on its own thread.
Result<Salvaged> salvage(const QString& damaged, const QString& target, SalvageProgress& progress);

}
