#include "Foundation/CopyAside.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QFile>
#include <QFileInfo>

namespace corvane {

std::optional<QString> copyAside(const QString& path)
{
    QString copy = path + u".damaged"_s;
    for (int n = 2; QFile::exists(copy); ++n)
        copy = u"%1.damaged-%2"_s.arg(path).arg(n);
    // Opening a pipe would block.
    if (!QFileInfo(path).isFile() || !QFile::copy(path, copy)) {
        log(u"%1 does not read and cannot be copied; it is left alone"_s.arg(path));
        return std::nullopt;
    }
    log(u"%1 does not read; a copy is kept as %2"_s.arg(path, copy));
    return copy;
}

}
