#pragma once

#include "Store/Core/LocalDB.h"

#include <QHash>

namespace corvane {

/// The time of the newest message of each account, by slug, in milliseconds since the epoch. An account
/// belongs to the machine, so every workspace counts.
QHash<QString, qint64> fetchLastMessageTimes(LocalDB& db);

}
