#pragma once

#include <QString>

namespace corvane {

class LocalDB;

/// Prepares a restored database for use: drafts that were being sent when the backup was made may have been sent since,
/// so they fail with that reason, and requests of other programs are closed. All or nothing; false if it cannot be
/// written.
[[nodiscard]] bool settleRestored(LocalDB& db);

/// Rewrites file paths in the rows from the folder `from` to `to`. False if it cannot be written.
[[nodiscard]] bool moveFilePaths(LocalDB& db, const QString& from, const QString& to);

}
