#include "Store/Core/LocalDB.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/Scheduler.h"
#include "Store/Core/DamagedFile.h"
#include "Store/Core/Schema.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Search/MessageChanges.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <sqlite3.h>

namespace corvane {

namespace {

constexpr int busyTimeoutMs = 5000;
constexpr int frameMs = 16;

void noteChange(void* changes, int operation, const char* /*schema*/, const char* table, sqlite3_int64 rowid)
{
    static_cast<MessageChanges*>(changes)->note(operation, table, rowid);
}

}

LocalDB::LocalDB(const QString& path, const SchemaFolders& schema, Scheduler& scheduler, UserDefaults& defaults,
    NotificationCentre& notifications)
    : SqlConnection(path)
    , m_schema(schema)
    , m_scheduler(scheduler)
    , m_defaults(defaults)
    , m_notifications(notifications)
    , m_health(std::make_unique<StoreHealth>(scheduler, [this] { return takesWrites(); }))
    , m_watch(std::make_unique<StoreWatch>(*this, scheduler))
{
    noteResultsIn(m_health.get());
    if (!openFile())
        log(u"LocalDB: failed to open "_s + path);
}

LocalDB::~LocalDB() = default;

void LocalDB::close()
{
    closeFile();
    m_watch->forget();
}

bool LocalDB::isSound() const
{
    return isOpen() && m_health->fault() == StoreFault::None;
}

bool LocalDB::reopen()
{
    close();
    m_health->forget();
    return openFile();
}

bool LocalDB::makeEmpty(const QString& path) const
{
    return LocalDB(path, m_schema, m_scheduler, m_defaults, m_notifications).isOpen();
}

bool LocalDB::openFile()
{
    if (awaitingChoice(path()))
        return false;
    QDir().mkpath(QFileInfo(path()).path());
    if (!SqlConnection::openFile(Access::ReadWrite))
        return false;
    sqlite3_busy_timeout(m_db, busyTimeoutMs); // first: another program may be starting, too
    exec(u"PRAGMA journal_mode=WAL;"_s);
    exec(u"PRAGMA foreign_keys=ON;"_s);
    // A savepoint per line copies every page that it changes. In a temporary file that takes a third of the time.
    exec(u"PRAGMA temp_store=MEMORY;"_s);
    exec(u"PRAGMA cache_size=-16384;"_s); // KiB
    sqlite3_update_hook(m_db, noteChange, &m_watch->messageChanges());
    // Of several programs that start at once, each sees what the others have added. Waiting once is enough.
    const Statement lock = prepare("BEGIN IMMEDIATE;");
    if (!lock || step(lock.get()) != SQLITE_DONE)
        sqlite3_busy_timeout(m_db, frameMs);
    applySchema(*this, m_schema);
    if (inTransaction())
        exec(u"COMMIT;"_s);
    sqlite3_busy_timeout(m_db, busyTimeoutMs);
    return true;
}

/// Proves that there is more space than what the file and its WAL have in reserve.
bool LocalDB::takesWrites()
{
    if (inTransaction())
        return false;
    // A file that was not writable when it was opened stays so for this connection.
    if (!isOpen() || m_health->fault() == StoreFault::ReadOnly) {
        close();
        if (!openFile())
            return false;
    }
    sqlite3_busy_timeout(m_db, frameMs);
    const int code = noted(sqlite3_exec(m_db,
        "BEGIN IMMEDIATE; CREATE TABLE IF NOT EXISTS write_probe(room);"
        "INSERT INTO write_probe VALUES(zeroblob(65536)); COMMIT; DROP TABLE write_probe;",
        nullptr, nullptr, nullptr));
    if (inTransaction())
        sqlite3_exec(m_db, "ROLLBACK;", nullptr, nullptr, nullptr);
    sqlite3_busy_timeout(m_db, busyTimeoutMs);
    return code == SQLITE_OK;
}

bool LocalDB::inTransaction() const
{
    return m_db && !sqlite3_get_autocommit(m_db);
}

bool LocalDB::begin(Patience patience)
{
    const Statement statement = prepare("BEGIN IMMEDIATE;");
    if (!statement)
        return false;
    if (patience == Patience::Frame)
        sqlite3_busy_timeout(m_db, frameMs);
    const bool begun = step(statement.get()) == SQLITE_DONE;
    sqlite3_busy_timeout(m_db, busyTimeoutMs);
    if (!begun && patience == Patience::Full)
        log(u"LocalDB.begin failed: "_s + errorMessage());
    return begun;
}

bool LocalDB::isHeldElsewhere()
{
    if (!m_db || inTransaction())
        return false;
    if (!begin(Patience::Frame))
        return sqlite3_errcode(m_db) == SQLITE_BUSY;
    exec(u"COMMIT;"_s);
    return false;
}

QString LocalDB::errorMessage() const
{
    return QString::fromUtf8(m_db ? sqlite3_errmsg(m_db) : "the database is not open");
}

void LocalDB::exec(const QString& sql)
{
    if (!m_db)
        return log(u"LocalDB exec error: "_s + errorMessage());
    char* message = nullptr;
    if (noted(sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &message)) != SQLITE_OK)
        log(u"LocalDB exec error: "_s + QString::fromUtf8(message));
    sqlite3_free(message);
}

bool LocalDB::run(const QString& sql, const QList<SqlValue>& parameters)
{
    const Statement statement = prepare(sql.toUtf8());
    if (!statement) {
        log(u"LocalDB.run prepare failed: %1 — %2"_s.arg(errorMessage(), sql));
        return false;
    }
    bind(statement.get(), parameters, Binding::Every);
    const int code = step(statement.get());
    if (code == SQLITE_DONE || code == SQLITE_ROW)
        return true;
    log(u"LocalDB.run step failed (rc=%1): %2 — %3"_s.arg(QString::number(code), errorMessage(), sql));
    return false;
}

qint64 LocalDB::changedRows(const QString& sql, const QList<SqlValue>& parameters)
{
    return run(sql, parameters) ? sqlite3_changes64(m_db) : 0;
}

std::optional<QString> LocalDB::scalar(const QString& sql, const QList<SqlValue>& parameters)
{
    const Statement statement = prepare(sql.toUtf8());
    if (!statement)
        return std::nullopt;
    bind(statement.get(), parameters, Binding::TextAndInteger64);
    if (step(statement.get()) != SQLITE_ROW)
        return std::nullopt;
    return SqlRow(statement.get()).optionalText(0);
}

bool LocalDB::tableExists(const QString& table)
{
    return scalar(u"SELECT 1 FROM sqlite_master WHERE type='table' AND name=? LIMIT 1;"_s, { table }).has_value();
}

bool LocalDB::columnExists(const QString& table, const QString& column)
{
    const auto names = rows(u"PRAGMA table_info(%1);"_s.arg(table), {}, [](const SqlRow& row) { return row.text(1); });
    return names.contains(column);
}

std::optional<QString> LocalDB::tableSQL(const QString& table)
{
    return scalar(u"SELECT sql FROM sqlite_master WHERE type='table' AND name=? LIMIT 1;"_s, { table });
}

void LocalDB::addColumnIfMissing(const QString& table, const QString& column, const QString& definition)
{
    if (!columnExists(table, column))
        exec(u"ALTER TABLE %1 ADD COLUMN %2;"_s.arg(table, definition));
}

qint64 LocalDB::nowMs() const
{
    return m_scheduler.nowMs();
}

QString jsonString(const QList<QString>& values)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(values)).toJson(QJsonDocument::Compact));
}

QList<QString> orderedUnique(const QList<QString>& values)
{
    QSet<QString> seen;
    QList<QString> unique;
    for (const QString& value : values) {
        const QString key = value.toLower();
        if (seen.contains(key))
            continue;
        seen.insert(key);
        unique.append(value);
    }
    return unique;
}

qint64 startOfTodayMs(qint64 nowMs)
{
    return QDateTime::fromMSecsSinceEpoch(nowMs).date().startOfDay().toMSecsSinceEpoch();
}

QString isoTime(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODate);
}

}
