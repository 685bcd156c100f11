#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// The state of one source of the web mirror.
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

/// Updates the state of a source; `status` "running" starts a run, any other ends it.
void recordSyncHealth(LocalDB& db, const SyncHealthRow& row);

/// How far a source was pulled and pushed.
struct SyncStateCursorRow {
    QString tableName;
    std::optional<qint64> lastPulled;
    std::optional<qint64> lastPushed;
};

/// Nothing if there is no such row or table.
std::optional<SyncStateCursorRow> fetchSyncStateCursor(LocalDB& db, const QString& tableName);

/// The tool server, as it registered itself.
struct EngineInfoRow {
    QString version;
    std::optional<QString> gitSha;
    qint64 startedAt = 0; ///< milliseconds since the epoch
    qint64 updatedAt = 0;
};

std::optional<EngineInfoRow> fetchEngineInfo(LocalDB& db);

/// Asks the web worker for a pull; returns the command's id.
QString queueWebPullSync(LocalDB& db, const QString& source);

}
