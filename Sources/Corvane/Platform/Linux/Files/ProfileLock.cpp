#include "Platform/ProfileLock.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Files/Descriptor.h"

#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace corvane {

std::unique_ptr<ProfileLock> ProfileLock::take(const QString& applicationSupport)
{
    const QByteArray path = QFile::encodeName(applicationSupport + u"/instance.lock"_s);
    Descriptor file(::open(path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.isOpen() || ::flock(file.number(), LOCK_EX | LOCK_NB) != 0)
        return nullptr;
    return std::unique_ptr<ProfileLock>(new ProfileLock(file.release()));
}

ProfileLock::~ProfileLock()
{
    ::close(m_descriptor);
}

}
