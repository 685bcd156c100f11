#pragma once

#include <QString>

namespace corvane::WAName {

/// A displayable name: a raw network address becomes words, anything else is unchanged.
QString pretty(const QString& name);

}
