#pragma once

#include <QFile>

namespace corvane {

/// What a file of /proc or /sys holds; empty where it does not read. Such files report a size of 0, so they are
/// read to their end.
inline QByteArray systemFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}
