#pragma once

#include "Foundation/Result.h"

#include <QMap>
#include <QString>
#include <atomic>
#include <memory>

namespace corvane {

struct AppPaths;

/// The number of rows of each kind, by its name.
using ExchangeCounts = QMap<QString, qint64>;

/// Writes the user's data to a folder, which must not exist: rows as JSON Lines and CSV, e-mails, contact cards and a
/// calendar. docs/export.md describes the files. May run beside the program. The folder appears complete or not at all;
/// the error is for the user.
Result<ExchangeCounts> exportProfile(
    const AppPaths& paths, const QString& folder, const std::shared_ptr<std::atomic<bool>>& stopped);

}
