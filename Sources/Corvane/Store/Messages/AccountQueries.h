#pragma once

#include "Store/Core/LocalDB.h"

#include <QHash>

namespace corvane {

/// The time of each account's newest message, by slug, in milliseconds since the epoch. An account belongs to the
/// machine, so all workspaces count.
QHash<QString, qint64> fetchLastMessageTimes(LocalDB& db);

}
