#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// How one source of the web mirror fares.
struct SyncHealthRow {
    QString source;
    QString status;
    std::optional<qint64> lastStartedAt; ///< milliseconds since the epoch
    std::optional<qint64> lastFinishedAt;
    qint64 cursor = 0;
    QString countsJson;
    QString lastError;

    bool operator==(const SyncHealthRow&) const = default;
};

QList<SyncHealthRow> fetchSyncHealthRows(LocalDB& db);

/// Asks the web worker for a pull; returns the command's id.
QString queueWebPullSync(LocalDB& db, const QString& source);

}
