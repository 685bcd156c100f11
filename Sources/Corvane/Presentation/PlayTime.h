#pragma once

#include <QString>

namespace corvane {

/// "0:07", "1:20", "1:02:03"; a part of a second does not count.
QString playTime(qint64 ms);

}
