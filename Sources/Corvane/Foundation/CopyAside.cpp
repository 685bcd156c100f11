#include "Foundation/CopyAside.h"

#include "Foundation/Log.h"

#include <QFile>
#include <QFileInfo>

namespace corvane {

std::optional<QString> copyAside(const QString& path)
{
    QString copy = path + QStringLiteral(".damaged");
    for (int n = 2; QFile::exists(copy); ++n)
        copy = QStringLiteral("%1.damaged-%2").arg(path).arg(n);
    // Opening a pipe would wait for a writer.
    if (!QFileInfo(path).isFile() || !QFile::copy(path, copy)) {
        log(QStringLiteral("%1 does not read and cannot be copied; it is left alone").arg(path));
        return std::nullopt;
    }
    log(QStringLiteral("%1 does not read; a copy is kept as %2").arg(path, copy));
    return copy;
}

}
