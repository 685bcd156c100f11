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

namespace corvane {

namespace {

constexpr qint64 littleRoom = 1024LL * 1024 * 1024;
constexpr qint64 noRoom = 100LL * 1024 * 1024;
constexpr qint64 dayMs = 24LL * 3600 * 1000;

/// What nobody else may read, of what is there.
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
    const QStorageInfo disk(folder);
    const qint64 free = disk.bytesAvailable();
    const QString words = u"%1 are free on the disk of %2."_s.arg(sizeWords(free), folder);
    const QString advice = u"Make room on that disk: without any, nothing is written, and new messages wait."_s;
    if (disk.isReadOnly())
        return { Health::Failure, u"The disk of %1 takes no writes."_s.arg(folder), u"Mount it for writing."_s };
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
            u"Give it back to yourself, as root: chown."_s };
    if (!unusable.isEmpty())
        return { Health::Failure, u"You may not read and write %1."_s.arg(unusable.join(u", "_s)),
            u"corvane doctor --fix gives you the right."_s };
    if (!open.isEmpty())
        return { Health::Warning, u"Other users may look into %1."_s.arg(open.join(u", "_s)),
            u"corvane doctor --fix closes it to them."_s };
    return good(u"They belong to you alone: %1."_s.arg(profile.paths.applicationSupport));
}

std::optional<QString> fixes::folders(const CheckedProfile& profile)
{
    QStringList closed;
    // A folder that was shut to its owner hides what is wrong below it.
    for (QStringList open = openPlaces(profile); !open.isEmpty(); open = openPlaces(profile)) {
        open.removeIf([](const QString& place) { return !makePrivate(place); });
        if (open.isEmpty())
            break;
        closed += open;
    }
    return closed.isEmpty() ? std::nullopt
                            : std::optional(u"Made usable by you alone: %1."_s.arg(closed.join(u", "_s)));
}

CheckResult checks::accounts(const CheckedProfile& profile)
{
    if (!profile.accounts)
        return { Health::Failure, u"%1/accounts.json does not read."_s.arg(profile.paths.applicationSupport),
            u"Restore it from a backup, or connect the accounts again: a copy is kept before it is written over."_s };
    const auto paused = std::ranges::count_if(
        *profile.accounts, [](const Account& account) { return account.paused.value_or(false); });
    const QString count = countWords(profile.accounts->size(), u"account"_s, u"accounts"_s);
    if (paused == 0)
        return good(count + u'.');
    return { Health::Good, u"%1, %2 paused."_s.arg(count).arg(paused),
        u"Paused ones bring nothing until they are resumed in Settings > Accounts."_s };
}

CheckResult checks::backups(const CheckedProfile& profile)
{
    const QList<KeptBackup> kept = keptBackups(profile.backups);
    if (kept.isEmpty())
        return { profile.backsUpDaily ? Health::Warning : Health::Good, u"There is none in %1."_s.arg(profile.backups),
            u"Turn on daily backups in Settings > Care, or corvane backup FILE."_s };
    const QString words = u"The last one was made %1."_s.arg(DateWords(profile.nowMs).ago(kept.first().madeAtMs));
    if (profile.backsUpDaily && profile.nowMs - kept.first().madeAtMs > 3 * dayMs)
        return { Health::Warning, words, u"Backups are on, but none came. Settings > Care says why."_s };
    return good(words);
}

}
