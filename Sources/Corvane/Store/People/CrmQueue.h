#pragma once

#include "Store/Core/LocalDB.h"

#include <QJsonObject>

namespace corvane {

/// Queues a change made on this machine for the web. A further change of the same kind to the same row, while
/// one is pending, replaces its payload and keeps its id.
void recordCRMMutation(LocalDB& db, const QString& entityType, const QString& entityId, const QString& action,
    const QString& origin, const QJsonObject& payload);

}
