#pragma once

#include "Store/Core/LocalDB.h"

#include <QJsonObject>

namespace corvane {

/// Queues a local change for the web. Another change of the same kind to the same row replaces the payload of a pending
/// one and keeps its id.
void recordCRMMutation(LocalDB& db, const QString& entityType, const QString& entityId, const QString& action,
    const QString& origin, const QJsonObject& payload);

}
