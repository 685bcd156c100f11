#pragma once

#include "Store/Work/OpsRecords.h"

namespace corvane {

/// What a project is to do, as its people wrote it down; empty fields are not defined yet.
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

/// A first text for a project that has none. What a person filled in stays. Nothing where it was not saved.
std::optional<DevSRSRow> seedDevSRS(LocalDB& db, const OpsProjectRow& project);

enum class DevSRSSaved { Saved, Changed, Failed };

/// Writes what a person edited, if the row still is as they saw it; one that was not there yet is made.
DevSRSSaved saveDevSRS(LocalDB& db, const DevSRSRow& seen, const DevSRSRow& wanted);

}
