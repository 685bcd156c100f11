#pragma once

#include <QString>

namespace corvane {

/// How large a file is, as file managers say it: "340 kB", "3.1 MB".
QString sizeWords(qint64 bytes);

}
