#include "Care/Doctor/Checks.h"

#include "Care/Backup/BackupKeeper.h"
#include "Engines/AccountStore.h"
#include "Foundation/UserDefaults.h"
#include "Platform/PrivateFile.h"
#include "Platform/Probes.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Presentation/SizeWords.h"

#include <QFileInfo>
#include <QStorageInfo>
#include <algorithm>
#include <filesystem>

namespace corvane {

namespace {

constexpr qint64 littleRoom = 1024LL * 1024 * 1024;
constexpr qint64 noRoom = 100LL * 1024 * 1024;
constexpr qint64 dayMs = 24LL * 3600 * 1000;

/// The existing files that nobody else may read.
QStringList privatePlaces(const CheckedProfile& profile)
{
    const QString& data = profile.paths.applicationSupport;
    QStringList places { data, profile.paths.database(), data + u"/accounts.json"_s, data + u"/mcp-token"_s,
        data + u"/media"_s, data + u"/secrets"_s, profile.paths.secretsFile(),
        QFileInfo(profile.paths.defaultsFile).path(), profile.paths.defaultsFile };
    places.removeIf([](const QString& place) { return !accessFacts(place).exists; });
    return places;
}

QStringList openPlaces(const CheckedProfile& profile)
{
    QStringList places = privatePlaces(profile);
    places.removeIf([](const QString& place) {
        const AccessFacts facts = accessFacts(place);
        return facts.isPrivate && facts.isUsable;
    });
    return places;
}

}

CheckedProfile checkedProfile(const AppPaths& paths, const UserDefaults& defaults, qint64 nowMs)
{
    CheckedProfile profile { paths, nowMs, QList<Account>() };
    const QString accounts = paths.applicationSupport + u"/accounts.json"_s;
    if (QFileInfo::exists(accounts)) {
        const auto file = openPlainFile(accounts);
        profile.accounts = file ? decodeAccounts(file->readAll()) : std::nullopt;
    }
    profile.backups = backupFolder(paths, defaults);
    profile.backsUpDaily = backsUpDaily(defaults);
    return profile;
}

CheckResult checks::disk(const CheckedProfile& profile)
{
    QString folder = profile.paths.applicationSupport;
    while (!QFileInfo::exists(folder))
        folder = QFileInfo(folder).path();
    std::error_code error;
    const auto room = std::filesystem::space(QFile::encodeName(folder).toStdString(), error);
    if (error)
        return { Health::Warning, u"The free space on the disk of %1 cannot be read."_s.arg(folder), {} };
    const auto free = qint64(room.available);
    const QString words = u"%1 free on the disk of %2."_s.arg(sizeWords(free), folder);
    const QString advice = u"Free some space on that disk: without any, nothing can be saved, and new messages wait."_s;
    if (QStorageInfo(folder).isReadOnly())
        return { Health::Failure, u"The disk of %1 is read-only."_s.arg(folder), u"Mount it read-write."_s };
    if (free < littleRoom)
        return { free < noRoom ? Health::Failure : Health::Warning, words, advice };
    return good(words);
}

CheckResult checks::folders(const CheckedProfile& profile)
{
    QStringList unusable;
    QStringList strange;
    const QStringList open = openPlaces(profile);
    for (const QString& place : privatePlaces(profile)) {
        const AccessFacts facts = accessFacts(place);
        if (!facts.isOwn)
            strange.append(place);
        else if (!facts.isUsable)
            unusable.append(place);
    }
    if (!strange.isEmpty())
        return { Health::Failure, u"Belongs to another user: %1."_s.arg(strange.join(u", "_s)),
            u"Take ownership of it, as root, with chown."_s };
    if (!unusable.isEmpty())
        return { Health::Failure, u"You do not have permission to read and write %1."_s.arg(unusable.join(u", "_s)),
            u"corvane doctor --fix sets the permissions."_s };
    if (!open.isEmpty())
        return { Health::Warning, u"Other users can read %1."_s.arg(open.join(u", "_s)),
            u"corvane doctor --fix makes it private."_s };
    return good(u"Only you can read them: %1."_s.arg(profile.paths.applicationSupport));
}

std::optional<QString> fixes::folders(const CheckedProfile& profile)
{
    QStringList closed;
    // A folder that its owner cannot enter hides problems below it.
    for (QStringList open = openPlaces(profile); !open.isEmpty(); open = openPlaces(profile)) {
        open.removeIf([](const QString& place) { return !makePrivate(place); });
        if (open.isEmpty())
            break;
        closed += open;
    }
    return closed.isEmpty() ? std::nullopt : std::optional(u"Made private: %1."_s.arg(closed.join(u", "_s)));
}

CheckResult checks::accounts(const CheckedProfile& profile)
{
    if (!profile.accounts) {
        const QString path = profile.paths.applicationSupport + u"/accounts.json"_s;
        return { Health::Failure, u"%1 cannot be read."_s.arg(path),
            QFileInfo(path).isReadable()
                ? u"Restore it from a backup, or connect the accounts again: a copy is kept before it is overwritten."_s
                : u"You need permission to read and write it: corvane doctor --fix sets it."_s };
    }
    const auto paused = std::ranges::count_if(
        *profile.accounts, [](const Account& account) { return account.paused.value_or(false); });
    const QString count = countWords(profile.accounts->size(), u"account"_s, u"accounts"_s);
    if (paused == 0)
        return good(count + u'.');
    return { Health::Good, u"%1, %2 paused."_s.arg(count).arg(paused),
        u"Paused accounts get no messages until you resume them in Settings > Accounts."_s };
}

CheckResult checks::backups(const CheckedProfile& profile)
{
    const QList<KeptBackup> kept = keptBackups(profile.backups);
    if (kept.isEmpty())
        return { profile.backsUpDaily ? Health::Warning : Health::Good, u"There is none in %1."_s.arg(profile.backups),
            u"Turn on daily backups in Settings > Care, or run corvane backup FILE."_s };
    const QString words = u"The last one was made %1."_s.arg(DateWords(profile.nowMs).ago(kept.first().madeAtMs));
    if (profile.backsUpDaily && profile.nowMs - kept.first().madeAtMs > 3 * dayMs)
        return { Health::Warning, words, u"Backups are on, but there is none. Settings > Care shows why."_s };
    return good(words);
}

}
