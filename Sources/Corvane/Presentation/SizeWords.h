#pragma once

#include <QString>

namespace corvane {

/// A file size as file managers show it: "340 kB", "3.1 MB".
QString sizeWords(qint64 bytes);

}
