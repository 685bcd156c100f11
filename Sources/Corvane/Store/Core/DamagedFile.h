#pragma once

#include <QString>
#include <optional>

namespace corvane {

// A corrupt database is moved aside with its WAL, and nothing replaces it until the user has chosen what to do.

/// Moves the database at `path` and its "-wal" to "{path}.damaged", or "{path}.damaged-2" and so on if those exist.
/// Returns the new path; nothing if it cannot be moved, and then it stays in place. No process has it open.
std::optional<QString> moveAside(const QString& path);

/// The database that was moved aside last, if nothing has replaced it yet.
std::optional<QString> awaitingChoice(const QString& path);

}
