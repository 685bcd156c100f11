#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// The pointer of a name in CSS, as programs request it (OSC 22); none if it is not known.
std::optional<Qt::CursorShape> pointerShape(const QString& name);

}
