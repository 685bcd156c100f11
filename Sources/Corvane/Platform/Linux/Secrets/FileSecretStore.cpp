#include "Platform/Linux/Secrets/FileSecretStore.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Json.h"
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

/// Makes the folder where it is missing, and shuts it to others. False where it is not ours.
bool closeFolder(const QString& path)
{
    if (!QDir().mkpath(path))
        return false;
    const Descriptor folder(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return folder.isOpen() && ::fchmod(folder.number(), S_IRWXU) == 0;
}

/// An ordinary file of this user that nobody else may write. One that others may read is shut to them.
bool isTrusted(const Descriptor& file)
{
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        return false;
    if (status.st_mode & (S_IWGRP | S_IWOTH))
        return false;
    return (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 || ::fchmod(file.number(), S_IRUSR | S_IWUSR) == 0;
}

}

FileSecretStore::FileSecretStore(const QString& path)
    : m_path(path)
{
}

std::optional<QString> FileSecretStore::get(const QString& service, const QString& account)
{
    const QJsonValue value = read().value_or(QJsonObject()).value(service).toObject().value(account);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

bool FileSecretStore::set(const QString& service, const QString& account, const QString& value)
{
    std::optional<QJsonObject> secrets = read();
    if (!secrets && !copyAside(m_path))
        return false;
    QJsonObject all = secrets.value_or(QJsonObject());
    QJsonObject accounts = all.value(service).toObject();
    accounts.insert(account, value);
    all.insert(service, accounts);
    return write(all);
}

void FileSecretStore::remove(const QString& service, const QString& account)
{
    std::optional<QJsonObject> secrets = read();
    if (!secrets)
        return;
    QJsonObject accounts = secrets->value(service).toObject();
    if (!accounts.contains(account))
        return;
    accounts.remove(account);
    secrets->insert(service, accounts);
    write(*secrets);
}

QString FileSecretStore::description() const
{
    return QStringLiteral("a private file (%1)").arg(m_path);
}

std::optional<QJsonObject> FileSecretStore::read() const
{
    const Descriptor descriptor(
        ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.isOpen())
        return errno == ENOENT ? std::optional(QJsonObject()) : std::nullopt;
    QFile file;
    if (!isTrusted(descriptor) || !file.open(descriptor.number(), QIODevice::ReadOnly))
        return std::nullopt;
    return jsonObject(file.readAll());
}

bool FileSecretStore::write(const QJsonObject& secrets) const
{
    const bool written = closeFolder(QFileInfo(m_path).path()) && writePrivateFile(m_path, compactJson(secrets));
    if (!written)
        log(QStringLiteral("SecretStore: %1 cannot be written").arg(m_path));
    return written;
}

}
