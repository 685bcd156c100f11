#pragma once

#include <QString>

namespace corvane::WAName {

/// A name fit for the screen: a raw network address becomes words, anything else stands as it is.
QString pretty(const QString& name);

}
