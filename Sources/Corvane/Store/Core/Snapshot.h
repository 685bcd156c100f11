#pragma once

#include "Foundation/Result.h"
#include "Store/Core/SqlConnection.h"

#include <QMap>

namespace corvane {

/// Writes a compact copy of the database as it is at this moment, while other programs go on reading and writing it.
/// `to` does not exist, and is gone again where the copy fails or `stopped` is set. The error is for the user. Takes
/// long; for a thread of its own.
Result<void> copyDatabase(const QString& from, const QString& to, std::shared_ptr<const std::atomic<bool>> stopped);

/// How many rows each table holds, by its name.
QMap<QString, qint64> countRows(SqlConnection& db);

/// What SQLite finds wrong with the structure of the file; empty where it is sound. Reads all of it.
QString integrityTrouble(SqlConnection& db);

/// How the file is used.
struct FileFigures {
    qint64 pageBytes = 0;
    qint64 pages = 0;
    qint64 freePages = 0; ///< inside the file, left by what was deleted

    qint64 bytes() const { return pages * pageBytes; }
    qint64 freeBytes() const { return freePages * pageBytes; }
};
FileFigures fileFigures(SqlConnection& db);

}
