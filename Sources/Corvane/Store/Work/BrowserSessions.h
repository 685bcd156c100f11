#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// The browser sessions of a project. Other programs write these rows, too. Times are ISO 8601 text.
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

/// Replaces a row with that id, except for its creation time; an empty path keeps the existing one. False, and a log
/// line, on failure.
bool upsertDevBrowserSession(LocalDB& db, const DevBrowserSessionRow& row);

QList<DevBrowserSessionRow> fetchDevBrowserSessions(LocalDB& db, const QString& projectId, int limit); ///< newest first

}
