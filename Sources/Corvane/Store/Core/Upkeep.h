#pragma once

#include "Store/Core/SqlConnection.h"

#include <QMap>
#include <QStringList>

namespace corvane {

class LocalDB;

/// The columns of each table, by its name.
QMap<QString, QStringList> tableColumns(SqlConnection& db);

/// The time of the newest message of all, in milliseconds since the epoch; 0 where there is none.
qint64 newestMessageMs(SqlConnection& db);

/// What costs little and is done when nobody waits: fresh figures for the query planner, and the log moved into the
/// file as far as no reader needs it.
void careWhileIdle(LocalDB& db);

/// Moves the whole log into the file and cuts it off. False where a reader or writer is in the way.
bool emptyLog(LocalDB& db);

/// Writes the file anew without the room that deleted rows left. Nobody else writes meanwhile; takes long.
bool compact(LocalDB& db);

}
