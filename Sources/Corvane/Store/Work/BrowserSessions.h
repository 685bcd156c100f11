#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// What was looked at in a browser for a project. Other programs write these rows, too. Times are ISO 8601 text.
struct DevBrowserSessionRow {
    QString id; ///< "browser:{uuid}"
    QString projectId;
    QString title;
    QString url;
    QString engine;
    QString status; ///< "live", "captured" or "reported"
    QString lastCapturePath; ///< empty until something was captured
    QString lastError;
    QString createdAt = {};
    QString updatedAt = {};

    bool operator==(const DevBrowserSessionRow&) const = default;
};

/// A row with that id is replaced, but for its time of creation; an empty path keeps the one that was there. False and
/// a log line where it was not saved.
bool upsertDevBrowserSession(LocalDB& db, const DevBrowserSessionRow& row);

QList<DevBrowserSessionRow> fetchDevBrowserSessions(LocalDB& db, const QString& projectId, int limit); ///< newest first

}
