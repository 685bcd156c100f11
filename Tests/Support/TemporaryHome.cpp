#include "Support/TemporaryHome.h"
#include "Support/Places.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace corvane {

namespace {

/// In memory where the machine has such a folder: a test does not wait for a disk.
QString memoryOrTemporaryFolder()
{
    const QFileInfo memory(QStringLiteral("/dev/shm"));
    return memory.isDir() && memory.isWritable() ? memory.filePath() : QDir::tempPath();
}

}

TemporaryHome::TemporaryHome()
    : m_folder(QStringLiteral("%1/corvane-test-XXXXXX").arg(memoryOrTemporaryFolder()))
{
    m_paths.home = m_folder.path();
    m_paths.applicationSupport = m_folder.filePath(QStringLiteral("share/Corvane"));
    m_paths.defaultsFile = m_folder.filePath(QStringLiteral("config/Corvane/defaults.ini"));
    m_paths.resources = m_folder.filePath(QStringLiteral("resources"));
    QDir(m_paths.resources).mkpath(QStringLiteral("engine/src"));
    QDir(m_folder.path()).mkpath(QStringLiteral("config/Corvane"));
    QFile::link(QStringLiteral(CORVANE_SOURCE "/local-schema"), m_paths.resources + QStringLiteral("/local-schema"));
}

void TemporaryHome::write(const QString& relative, const QByteArray& content) const
{
    const QString target = path(relative);
    QDir().mkpath(QFileInfo(target).path());
    QFile file(target);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(target);
    file.write(content);
}

QByteArray TemporaryHome::read(const QString& relative) const
{
    QFile file(path(relative));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}
