#pragma once

#include <QString>
#include <optional>

namespace corvane {

// A database that contradicts itself is moved aside with its log, and nothing lies in its place until the user has
// chosen what should.

/// Moves the database at `path` and its "-wal" to "{path}.damaged", or "{path}.damaged-2" and so on where others stand.
/// The new path; nothing where it cannot be moved, and then it stands where it stood. Nobody has it open.
std::optional<QString> moveAside(const QString& path);

/// The database that was moved aside last, where nothing has been put in its place.
std::optional<QString> awaitingChoice(const QString& path);

}
