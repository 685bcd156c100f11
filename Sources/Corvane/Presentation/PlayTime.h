#pragma once

#include <QString>

namespace corvane {

/// "0:07", "1:20", "1:02:03"; fractions of a second are dropped.
QString playTime(qint64 ms);

}
