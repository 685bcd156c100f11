#pragma once

#include "Foundation/Result.h"
#include "Store/Core/SqlConnection.h"

#include <QMap>

namespace corvane {

/// Writes a compact snapshot of the database to a new file while other programs continue to use it. `to` is removed
/// again if this fails or `stopped` is set. The error is for the user. Slow; may run on any thread.
Result<void> copyDatabase(const QString& from, const QString& to, std::shared_ptr<const std::atomic<bool>> stopped);

/// The number of rows of each table, by its name.
QMap<QString, qint64> countRows(SqlConnection& db);

/// What the integrity check reports; empty if the file is sound. Reads the whole file.
QString integrityTrouble(SqlConnection& db);

/// Size and free space of the file.
struct FileFigures {
    qint64 pageBytes = 0;
    qint64 pages = 0;
    qint64 freePages = 0; ///< unused, after rows were deleted

    qint64 bytes() const { return pages * pageBytes; }
    qint64 freeBytes() const { return freePages * pageBytes; }
};
FileFigures fileFigures(SqlConnection& db);

}
