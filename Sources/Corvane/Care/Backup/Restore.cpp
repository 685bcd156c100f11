#include "Care/Backup/Restore.h"

#include "Care/Backup/WorkFolder.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Json.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/PrivateFile.h"
#include "Platform/ProfileLock.h"
#include "Platform/SecretFile.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/Restored.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

namespace corvane {

namespace {

const QString lockName = u"instance.lock"_s;
const QString socketName = u"instance.socket"_s;

/// What a start creates that contains no user data.
bool isEmptyProfile(const QString& folder)
{
    return !QFileInfo::exists(folder + u"/nimblocal.db"_s) && !QFileInfo::exists(folder + u"/accounts.json"_s)
        && !QFileInfo::exists(folder + u"/media"_s);
}

QString freeName(const QString& path)
{
    QString name = path + u".before-restore"_s;
    for (int n = 2; QFileInfo::exists(name); ++n)
        name = u"%1.before-restore-%2"_s.arg(path).arg(n);
    return name;
}

QByteArray contentOf(const QString& path)
{
    const auto file = openPlainFile(path);
    return file ? file->readAll() : QByteArray();
}

Result<void> settleDatabase(
    const QString& path, const QString& from, const AppPaths& paths, Scheduler& scheduler, UserDefaults& defaults)
{
    NotificationCentre nobody;
    LocalDB db(path, { paths.resources, paths.home }, scheduler, defaults, nobody);
    if (!db.isOpen() || !settleRestored(db) || !moveFilePaths(db, from, paths.applicationSupport))
        return failure(u"The database of the backup cannot be prepared."_s);
    return {};
}

Result<void> pauseAccounts(const QString& file)
{
    if (!QFileInfo::exists(file))
        return {};
    auto accounts = decodeAccounts(contentOf(file));
    if (!accounts)
        return failure(u"The accounts of the backup cannot be read."_s);
    for (Account& account : *accounts)
        account.paused = true;
    return writePrivateFile(file, encodeAccounts(*accounts)) ? Result<void>()
                                                             : failure(u"The accounts cannot be written."_s);
}

/// At the next start, the program's keychain moves them to the desktop's keyring.
Result<void> putSecrets(const QByteArray& text, const QString& file)
{
    if (text.isEmpty())
        return {};
    SecretPlaces places;
    const QJsonObject secrets = jsonObject(text).value_or(QJsonObject());
    for (auto each = secrets.begin(); each != secrets.end(); ++each)
        places.insert(each.key(), { SecretPlace::Where::File, each->toString() });
    return SecretFile(file).write(places) ? Result<void>() : failure(u"Passwords and tokens cannot be written."_s);
}

/// Sign-ins of engines are in folders below the home directory: "{kind}/{account}". Existing ones are kept.
QStringList putSignIns(const QString& unpacked, const QString& home)
{
    QStringList leftAlone;
    QDir kinds(unpacked);
    for (const QString& kind : kinds.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
        QDir accounts(kinds.filePath(kind));
        for (const QString& account : accounts.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
            const QString target = home + u'/' + kind + u'/' + account;
            const bool isOurs = kind.startsWith(".corvane-"_L1) || kind == ".whatsapp-baileys"_L1;
            if (!isOurs || QFileInfo::exists(target) || QFileInfo(home + u'/' + kind).isSymLink()
                || !QDir().mkpath(home + u'/' + kind) || !QFile::rename(accounts.filePath(account), target))
                leftAlone.append(target);
        }
    }
    return leftAlone;
}

/// Turns what was unpacked into a usable data folder at `folder`/data.
Result<void> prepare(const QString& folder, const Manifest& manifest, const AppPaths& paths, Scheduler& scheduler)
{
    const QString data = folder + u"/data"_s;
    if (!QDir().mkpath(data))
        return failure(u"The folder %1 cannot be created."_s.arg(data));
    UserDefaults defaults(folder + u'/' + backupNames::settings);
    if (manifest.files.contains(backupNames::database)) {
        const QString database = data + u"/nimblocal.db"_s;
        if (!QFile::rename(folder + u'/' + backupNames::database, database))
            return failure(u"The database cannot be put in its place."_s);
        if (const auto settled = settleDatabase(database, manifest.dataFolder, paths, scheduler, defaults); !settled)
            return settled;
    }
    if (const auto paused = pauseAccounts(data + u"/accounts.json"_s); !paused)
        return paused;
    QFile::rename(folder + u'/' + backupNames::session, data + u"/companion.jwt"_s);
    return putSecrets(contentOf(folder + u'/' + backupNames::secrets), data + u"/secrets/secrets.json"_s);
}

/// Replaces the existing folder, which is renamed or, if it is empty, removed. Returns its new path, or nothing.
Result<QString> exchange(const QString& prepared, const QString& target)
{
    const auto lock = ProfileLock::take(prepared); // before any program can start with it
    QString aside;
    if (isEmptyProfile(target)) {
        QFile::remove(target + u'/' + lockName);
        QFile::remove(target + u'/' + socketName);
        if (!QDir().rmdir(target))
            aside = freeName(target);
    } else {
        aside = freeName(target);
    }
    if (!aside.isEmpty() && !QFile::rename(target, aside))
        return failure(u"%1 cannot be moved aside."_s.arg(target));
    if (QFile::rename(prepared, target))
        return aside;
    if (!aside.isEmpty())
        QFile::rename(aside, target);
    return failure(u"%1 cannot be created."_s.arg(target));
}

}

Result<Restored> restoreBackup(const AppPaths& paths, const RestoreRequest& request, Scheduler& scheduler,
    const std::shared_ptr<BackupProgress>& progress)
{
    const QString target = paths.applicationSupport;
    if (QFileInfo(target).isSymLink())
        return failure(u"%1 is a link. Nothing is restored through one."_s.arg(target));
    if (!QDir().mkpath(target))
        return failure(u"The folder %1 cannot be created."_s.arg(target));
    const auto lock = ProfileLock::take(target);
    if (!lock)
        return failure(u"Corvane is using %1. Quit it first."_s.arg(target));
    if (!request.replace && !isEmptyProfile(target))
        return failure(u"There is a profile in %1 already. Give --replace to put it aside, or --into to name another "
                       "folder."_s.arg(target));
    const WorkFolder folder(target);
    if (!folder.isValid())
        return failure(u"A folder cannot be created beside %1."_s.arg(target));
    const auto manifest = unpackBackup(request.file, request.passphrase, folder.path(), progress);
    if (!manifest)
        return std::unexpected(manifest.error());
    if (const auto ready = prepare(folder.path(), *manifest, paths, scheduler); !ready)
        return std::unexpected(ready.error());
    const auto aside = exchange(folder.filePath(u"data"_s), target);
    if (!aside)
        return std::unexpected(aside.error());
    askToRetell(paths);
    Restored restored { *manifest, *aside, putSignIns(folder.filePath(backupNames::signIns), paths.home) };
    if (!manifest->files.contains(backupNames::settings))
        return restored;
    if (QFileInfo::exists(paths.defaultsFile))
        QFile::rename(paths.defaultsFile, freeName(paths.defaultsFile));
    if (!writePrivateFile(paths.defaultsFile, contentOf(folder.filePath(backupNames::settings))))
        return failure(u"The data is restored, but the settings could not be written to %1."_s.arg(paths.defaultsFile));
    return restored;
}

Result<AppPaths> profileIn(const QString& folder, const AppPaths& own)
{
    if (folder.isEmpty() || folder.split(u'/').contains(u".."_s))
        return failure(u"Enter the folder without “..” in its path."_s);
    const QString path = QDir::cleanPath(QDir(folder).absolutePath());
    AppPaths paths = own;
    paths.applicationSupport = path + u"/data/Corvane"_s;
    paths.defaultsFile = path + u"/config/Corvane/defaults.ini"_s;
    for (const QString& each : { path, path + u"/data"_s, paths.applicationSupport, path + u"/config"_s,
             path + u"/config/Corvane"_s, paths.defaultsFile }) {
        if (QFileInfo(each).isSymLink())
            return failure(u"%1 is a link. Nothing is restored through one."_s.arg(each));
    }
    return paths;
}

Result<void> restoreDatabase(const QString& backup, const QString& to, const AppPaths& paths, Scheduler& scheduler)
{
    const WorkFolder folder(to);
    const auto manifest = unpackBackup(backup, std::nullopt, folder.path(), std::make_shared<BackupProgress>());
    if (!manifest)
        return std::unexpected(manifest.error());
    const QString database = folder.filePath(backupNames::database);
    UserDefaults defaults(folder.filePath(backupNames::settings));
    if (const auto settled = settleDatabase(database, manifest->dataFolder, paths, scheduler, defaults); !settled)
        return settled;
    return QFile::rename(database, to) ? Result<void>() : failure(u"The backup cannot be copied."_s);
}

}
