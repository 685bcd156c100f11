#include "Care/Backup/WorkFolder.h"

#include "Foundation/Literals.h"
#include "Platform/ProfileLock.h"

#include <QDir>
#include <QFileInfo>

namespace corvane {

namespace {

const QString prefix = u".corvane-unfinished-"_s;

void removeLeftovers(const QString& parent)
{
    const QDir folder(parent);
    for (const QString& name : folder.entryList({ prefix + u'*' }, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks)) {
        if (const auto unused = ProfileLock::take(folder.filePath(name)))
            QDir(folder.filePath(name)).removeRecursively();
    }
}

QString madeRoom(const QString& neighbour)
{
    const QString parent = QFileInfo(neighbour).absolutePath();
    removeLeftovers(parent);
    return parent + u'/' + prefix + u"XXXXXX"_s;
}

}

WorkFolder::WorkFolder(const QString& neighbour)
    : m_folder(madeRoom(neighbour))
    , m_lock(ProfileLock::take(m_folder.path()))
{
}

WorkFolder::~WorkFolder() = default;

}
