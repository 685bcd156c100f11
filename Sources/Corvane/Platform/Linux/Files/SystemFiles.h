#pragma once

#include <QFile>

namespace corvane {

/// The content of a file in /proc or /sys; empty if it is unreadable. Such files report a size of 0, so they are read
/// until their end.
inline QByteArray systemFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}
