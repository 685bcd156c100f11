#include "Store/Core/DamagedFile.h"

#include "Foundation/Log.h"

#include <QFile>
#include <QFileInfo>

namespace corvane {

namespace {

const QString logSuffix = QStringLiteral("-wal");
const QString indexSuffix = QStringLiteral("-shm"); // of the log, from which SQLite makes it anew

QString asidePath(const QString& path, int n)
{
    const QString first = path + QStringLiteral(".damaged");
    return n == 1 ? first : QStringLiteral("%1-%2").arg(first).arg(n);
}

}

std::optional<QString> moveAside(const QString& path)
{
    const bool hasLog = QFile::exists(path + logSuffix);
    int n = 1;
    while (QFile::exists(asidePath(path, n)) || (hasLog && QFile::exists(asidePath(path, n) + logSuffix)))
        ++n;
    const QString aside = asidePath(path, n);
    // The log goes first: a log that stayed behind would be read into the file that comes next.
    if ((hasLog && !QFile::rename(path + logSuffix, aside + logSuffix)) || !QFile::rename(path, aside)) {
        QFile::rename(aside + logSuffix, path + logSuffix);
        log(QStringLiteral("%1 is damaged and cannot be moved").arg(path));
        return std::nullopt;
    }
    QFile::remove(path + indexSuffix);
    log(QStringLiteral("%1 is damaged; it was moved to %2").arg(path, aside));
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
