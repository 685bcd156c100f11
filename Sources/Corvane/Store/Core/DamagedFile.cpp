#include "Store/Core/DamagedFile.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QFile>
#include <QFileInfo>

namespace corvane {

namespace {

const QString logSuffix = u"-wal"_s;
const QString indexSuffix = u"-shm"_s; // the WAL index, which SQLite recreates

QString asidePath(const QString& path, int n)
{
    const QString first = path + u".damaged"_s;
    return n == 1 ? first : u"%1-%2"_s.arg(first).arg(n);
}

}

std::optional<QString> moveAside(const QString& path)
{
    const bool hasLog = QFile::exists(path + logSuffix);
    int n = 1;
    while (QFile::exists(asidePath(path, n)) || (hasLog && QFile::exists(asidePath(path, n) + logSuffix)))
        ++n;
    const QString aside = asidePath(path, n);
    // The WAL is moved first: a leftover one would be applied to the next file.
    if ((hasLog && !QFile::rename(path + logSuffix, aside + logSuffix)) || !QFile::rename(path, aside)) {
        QFile::rename(aside + logSuffix, path + logSuffix);
        log(u"%1 is damaged and cannot be moved"_s.arg(path));
        return std::nullopt;
    }
    QFile::remove(path + indexSuffix);
    log(u"%1 is damaged; it was moved to %2"_s.arg(path, aside));
    return aside;
}

std::optional<QString> awaitingChoice(const QString& path)
{
    if (QFile::exists(path) || !QFile::exists(asidePath(path, 1)))
        return std::nullopt;
    int n = 1;
    while (QFile::exists(asidePath(path, n + 1)))
        ++n;
    return asidePath(path, n);
}

}
