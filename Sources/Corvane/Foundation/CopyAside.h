#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// Copies an unreadable file before something else is written in its place: to "{path}.damaged", or "{path}.damaged-2"
/// and so on if earlier copies exist. Returns the path of the copy, or nothing if copying failed; then the file must be
/// left alone.
std::optional<QString> copyAside(const QString& path);

}
