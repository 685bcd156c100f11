#pragma once

#include <QString>

namespace corvane {

class LocalDB;

/// Makes a database that was restored from a backup safe to go on with: what the backup holds as on its way out may
/// have gone out since, so such drafts fail and say so, and requests of other programs end. All or nothing; false where
/// it could not be written.
[[nodiscard]] bool settleRestored(LocalDB& db);

/// Files that the rows name below the folder `from` are in `to` now. False where it could not be written.
[[nodiscard]] bool moveFilePaths(LocalDB& db, const QString& from, const QString& to);

}
