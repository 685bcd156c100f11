#pragma once

#include <QString>

namespace corvane {

// The literals u""_s, ""_L1 and ""_ba work in the whole namespace.
using namespace Qt::StringLiterals;

} // namespace corvane
