#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// Copies a file that does not read beside itself, before something else is written in its place: to
/// "{path}.damaged", or "{path}.damaged-2" and so on where earlier copies stand. The copy's path, or nothing
/// where copying fails; then the file must be left alone.
std::optional<QString> copyAside(const QString& path);

}
