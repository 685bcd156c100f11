#include "Care/Doctor/Checks.h"

#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Presentation/SizeWords.h"
#include "Store/Approvals/ApprovalRecords.h"
#include "Store/Core/DamagedFile.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/Snapshot.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Core/Upkeep.h"

#include <QFileInfo>

namespace corvane {

namespace {

constexpr qint64 largestLog = 256 * 1024 * 1024; // SQLite itself keeps it near 4 MiB
constexpr qint64 muchFree = 64 * 1024 * 1024;

std::unique_ptr<SqlConnection> reader(const CheckedProfile& profile)
{
    return SqlConnection::reader(profile.paths.database(), std::make_shared<std::atomic<bool>>(false));
}

bool isThere(const CheckedProfile& profile)
{
    return QFileInfo::exists(profile.paths.database());
}

/// Why the database cannot be checked; nothing if it can.
std::optional<CheckResult> unread(const CheckedProfile& profile, SqlConnection& db)
{
    if (!isThere(profile))
        return good(u"There is none yet."_s);
    if (tableColumns(db).isEmpty())
        return good(u"Not checked, because the database cannot be opened."_s);
    return std::nullopt;
}

/// A connection on the calling thread, with the schema migrated.
struct OwnDatabase {
    OwnDatabase(const QString& path, const CheckedProfile& profile)
        : defaults(profile.paths.defaultsFile)
        , db(path, { profile.paths.resources, profile.paths.home }, scheduler, defaults, nobody)
    {
    }

    SystemScheduler scheduler;
    UserDefaults defaults;
    NotificationCentre nobody;
    LocalDB db;
};

/// Tables, and columns as "table.column", that the program uses and the file lacks.
QStringList missingIn(SqlConnection& db, const CheckedProfile& profile)
{
    OwnDatabase model(u":memory:"_s, profile); // every disk may be full
    const auto wanted = tableColumns(model.db);
    const auto present = tableColumns(db);
    QStringList missing;
    for (auto each = wanted.begin(); each != wanted.end(); ++each) {
        if (!present.contains(each.key())) {
            missing.append(each.key());
            continue;
        }
        for (const QString& column : each.value()) {
            if (!present[each.key()].contains(column))
                missing.append(each.key() + u'.' + column);
        }
    }
    return missing;
}

bool isCorrupt(StoreFault fault)
{
    return fault == StoreFault::Damaged || fault == StoreFault::NotADatabase;
}

qint64 logBytes(const CheckedProfile& profile)
{
    return QFileInfo(profile.paths.database() + u"-wal"_s).size();
}

}

CheckResult checks::database(const CheckedProfile& profile)
{
    const QString path = profile.paths.database();
    if (const auto aside = awaitingChoice(path))
        return { Health::Failure, u"It was damaged and moved to %1; nothing has replaced it."_s.arg(*aside),
            u"Start Corvane and choose what replaces it, or run corvane --recover save."_s };
    const QFileInfo folder(profile.paths.applicationSupport);
    if (folder.exists() && !folder.isExecutable())
        return { Health::Failure, u"Its folder cannot be entered: %1"_s.arg(folder.filePath()),
            u"You need permission to read and write it: corvane doctor --fix sets it."_s };
    if (!isThere(profile))
        return { Health::Good, u"There is none yet. The first start creates it."_s };
    const auto db = reader(profile);
    const QString trouble = db->isOpen() ? integrityTrouble(*db) : u"It cannot be opened."_s;
    if (trouble.isEmpty())
        return good(u"It is intact."_s);
    if (!QFileInfo(path).isReadable())
        return { Health::Failure, u"It cannot be read: %1"_s.arg(path),
            u"You need permission to read and write it: corvane doctor --fix sets it."_s };
    const StoreFault fault = storeFault(db->failure());
    if (fault == StoreFault::None && mayPass(db->failure()))
        return { Health::Warning, u"Not checked, because another program holds it."_s, u"Check again later."_s };
    if (fault != StoreFault::None && !isCorrupt(fault))
        return { Health::Failure, u"It cannot be opened: its log cannot be used, which even reading needs."_s,
            u"Follow what is said of the disk, the folders and the database log, then check again."_s };
    return {
        Health::Failure, u"It is damaged: %1"_s.arg(trouble),
        u"Quit Corvane, then corvane restore --replace with the latest backup, or start it and save what can be read."_s
    };
}

CheckResult checks::schema(const CheckedProfile& profile)
{
    const auto db = reader(profile);
    if (const auto nothing = unread(profile, *db))
        return *nothing;
    const QStringList missing = missingIn(*db, profile);
    if (missing.isEmpty())
        return good(u"All of them exist."_s);
    return { Health::Warning, u"Missing: %1."_s.arg(missing.join(u", "_s)),
        u"Start Corvane once, or run corvane doctor --fix: both add them."_s };
}

std::optional<QString> fixes::schema(const CheckedProfile& profile)
{
    const bool opened = OwnDatabase(profile.paths.database(), profile).db.isOpen();
    return opened ? std::optional(u"Added the tables and columns that were missing."_s) : std::nullopt;
}

CheckResult checks::databaseSize(const CheckedProfile& profile)
{
    const auto db = reader(profile);
    if (const auto nothing = unread(profile, *db))
        return *nothing;
    const FileFigures figures = fileFigures(*db);
    const QString size = sizeWords(figures.bytes());
    if (figures.freeBytes() < muchFree || figures.freePages * 4 < figures.pages)
        return good(u"Its size is %1."_s.arg(size));
    return { Health::Warning, u"Its size is %1, of which %2 are unused."_s.arg(size, sizeWords(figures.freeBytes())),
        u"corvane doctor --fix compacts it. Engines wait meanwhile."_s };
}

std::optional<QString> fixes::databaseSize(const CheckedProfile& profile)
{
    const qint64 before = QFileInfo(profile.paths.database()).size();
    OwnDatabase own(profile.paths.database(), profile);
    if (!own.db.isOpen() || !compact(own.db))
        return std::nullopt;
    const qint64 after = QFileInfo(profile.paths.database()).size();
    return u"Compacted the database: %1 instead of %2."_s.arg(sizeWords(after), sizeWords(before));
}

CheckResult checks::databaseLog(const CheckedProfile& profile)
{
    const QString path = profile.paths.database();
    const bool hasLog = QFileInfo::exists(path + u"-wal"_s);
    if (!hasLog && QFileInfo::exists(path + u"-shm"_s))
        return { Health::Failure, u"%1-wal is missing, although the database was not closed."_s.arg(path),
            u"The latest changes may be lost. Quit Corvane, start it again, and compare with the latest backup."_s };
    if (logBytes(profile) > largestLog)
        return {
            Health::Warning, u"It has grown to %1."_s.arg(sizeWords(logBytes(profile))),
            u"Some program never stops reading. Quit Corvane and other programs that read it, then run corvane doctor --fix."_s
        };
    return good(hasLog ? u"Its size is %1."_s.arg(sizeWords(logBytes(profile))) : u"It is empty."_s);
}

std::optional<QString> fixes::databaseLog(const CheckedProfile& profile)
{
    if (!QFileInfo::exists(profile.paths.database() + u"-wal"_s))
        return std::nullopt;
    OwnDatabase own(profile.paths.database(), profile);
    return own.db.isOpen() && emptyLog(own.db) ? std::optional(u"Moved the log into the database."_s) : std::nullopt;
}

CheckResult checks::decisions(const CheckedProfile& profile)
{
    const auto db = reader(profile);
    if (const auto nothing = unread(profile, *db))
        return *nothing;
    if (!tableColumns(*db).contains(u"approval_record"_s))
        return good(u"No decision has been recorded yet."_s);
    const RecordCheck record = checkRecords(*db);
    return record.sound ? good(record.words)
                        : CheckResult { Health::Failure, record.words,
                              u"A line was changed or removed by another program. Compare with a backup."_s };
}

}
