#include "Platform/SecretFile.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/PrivateFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace corvane {

namespace {

const QString service = u"com.nimb.corvane"_s;

/// Creates the folder if necessary, and makes it private. False if it belongs to someone else.
bool closeFolder(const QString& path)
{
    if (!QDir().mkpath(path))
        return false;
    const Descriptor folder(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder.isOpen() && ::fchmod(folder.number(), S_IRWXU) == 0;
}

/// A regular file of this user that nobody else may write. One that others may read is made private.
bool isTrusted(const Descriptor& file)
{
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        return false;
    if (status.st_mode & (S_IWGRP | S_IWOTH))
        return false;
    return (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 || ::fchmod(file.number(), S_IRUSR | S_IWUSR) == 0;
}

/// Nothing if the file cannot be trusted.
std::optional<QJsonObject> readTrusted(const QString& path)
{
    const Descriptor descriptor(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.isOpen())
        return errno == ENOENT ? std::optional(QJsonObject()) : std::nullopt;
    QFile file;
    if (!isTrusted(descriptor) || !file.open(descriptor.number(), QIODevice::ReadOnly))
        return std::nullopt;
    return jsonObject(file.readAll());
}

/// A text is the secret itself, true means the keyring, null a removal.
SecretPlace placeFrom(const QJsonValue& value)
{
    if (value.isString())
        return { SecretPlace::Where::File, value.toString() };
    return { value.isNull() ? SecretPlace::Where::Nowhere : SecretPlace::Where::Keyring, {} };
}

QJsonValue jsonOf(const SecretPlace& place)
{
    switch (place.where) {
    case SecretPlace::Where::File:
        return place.value;
    case SecretPlace::Where::Keyring:
        return true;
    case SecretPlace::Where::Nowhere:
        return QJsonValue::Null;
    }
    Q_UNREACHABLE();
}

}

SecretPlaces SecretFile::read() const
{
    const QJsonObject accounts = readTrusted(m_path).value_or(QJsonObject()).value(service).toObject();
    SecretPlaces places;
    for (auto each = accounts.begin(); each != accounts.end(); ++each)
        places.insert(each.key(), placeFrom(each.value()));
    return places;
}

bool SecretFile::write(const SecretPlaces& places) const
{
    QJsonObject accounts;
    for (auto each = places.begin(); each != places.end(); ++each)
        accounts.insert(each.key(), jsonOf(each.value()));
    const bool written = (readTrusted(m_path) || copyAside(m_path)) && closeFolder(QFileInfo(m_path).path())
        && writePrivateFile(m_path, compactJson({ { service, accounts } }));
    if (!written)
        log(u"SecretFile: %1 cannot be written"_s.arg(m_path));
    return written;
}

}
