#include "Support/TemporaryHome.h"
#include "Foundation/Literals.h"
#include "Support/Places.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace corvane {

namespace {

/// In memory if possible, so that tests do not wait for a disk.
QString memoryOrTemporaryFolder()
{
    const QFileInfo memory(u"/dev/shm"_s);
    return memory.isDir() && memory.isWritable() ? memory.filePath() : QDir::tempPath();
}

}

TemporaryHome::TemporaryHome()
    : m_folder(u"%1/corvane-test-XXXXXX"_s.arg(memoryOrTemporaryFolder()))
{
    m_paths.home = m_folder.path();
    m_paths.applicationSupport = m_folder.filePath(u"share/Corvane"_s);
    m_paths.defaultsFile = m_folder.filePath(u"config/Corvane/defaults.ini"_s);
    m_paths.resources = m_folder.filePath(u"resources"_s);
    QDir(m_paths.resources).mkpath(u"engine/src"_s);
    QDir(m_folder.path()).mkpath(u"config/Corvane"_s);
    QFile::link(QStringLiteral(CORVANE_SOURCE "/local-schema"), m_paths.resources + u"/local-schema"_s);
    QFile::link(QStringLiteral(CORVANE_SOURCE "/docs/help"), m_paths.resources + u"/help"_s);
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
