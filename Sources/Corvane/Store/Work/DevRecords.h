#pragma once

#include "Store/Work/OpsRecords.h"

namespace corvane {

/// The requirements of a project; empty fields are not defined yet.
struct DevSRSRow {
    QString projectId;
    QString overview;
    QString users;
    QString requirements;
    QString modules;
    QString flows;
    QString acceptance;
    QString constraints;
    QString openQuestions;
    QString updatedAt;

    bool operator==(const DevSRSRow&) const = default;
};

std::optional<DevSRSRow> fetchDevSRS(LocalDB& db, const QString& projectId);

/// A first text for a project that has none; existing fields are kept. Nothing if it was not saved.
std::optional<DevSRSRow> seedDevSRS(LocalDB& db, const OpsProjectRow& project);

enum class DevSRSSaved { Saved, Changed, Failed };

/// Saves the user's edits if the row is still as they saw it; creates a missing row.
DevSRSSaved saveDevSRS(LocalDB& db, const DevSRSRow& seen, const DevSRSRow& wanted);

}
