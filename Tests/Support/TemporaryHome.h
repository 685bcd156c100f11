#pragma once

#include "Platform/AppPaths.h"

#include <QTemporaryDir>

namespace corvane {

/// A temporary home directory with application support, defaults, and resources. The resources are the real schema, the
/// real help and an empty engine folder.
class TemporaryHome {
public:
    TemporaryHome();

    const AppPaths& paths() const { return m_paths; }
    QString path(const QString& relative) const { return m_folder.filePath(relative); }

    /// Writes a file and creates missing folders.
    void write(const QString& relative, const QByteArray& content) const;
    QByteArray read(const QString& relative) const;

private:
    QTemporaryDir m_folder;
    AppPaths m_paths;
};

}
