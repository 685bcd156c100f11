#pragma once

#include "Store/Core/SqlConnection.h"

#include <QMap>
#include <QStringList>

namespace corvane {

class LocalDB;

/// The columns of each table, by its name.
QMap<QString, QStringList> tableColumns(SqlConnection& db);

/// The time of the newest message of all, in milliseconds since the epoch; 0 if there is none.
qint64 newestMessageMs(SqlConnection& db);

/// Cheap maintenance: updates the planner's statistics and checkpoints the log as far as readers allow.
void careWhileIdle(LocalDB& db);

/// Checkpoints and truncates the log. False if a reader or writer prevents it.
bool emptyLog(LocalDB& db);

/// Rewrites the file without its free space. Blocks other writers; slow.
bool compact(LocalDB& db);

}
