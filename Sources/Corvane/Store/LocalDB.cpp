#include "Store/LocalDB.h"

#include "Foundation/Log.h"
#include "Foundation/Scheduler.h"
#include "Store/Schema.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <sqlite3.h>

namespace corvane {

namespace {

enum class Binding { Every, TextAndInteger64 };

void bindText(sqlite3_stmt* statement, int index, const QString& text)
{
    sqlite3_bind_text(statement, index, text.toUtf8().constData(), -1, SQLITE_TRANSIENT);
}

/// A value that `binding` leaves out stays unbound, which SQLite reads as NULL.
void bind(sqlite3_stmt* statement, const QList<SqlValue>& parameters, Binding binding)
{
    int index = 0;
    for (const SqlValue& parameter : parameters) {
        const SqlValue::Variant& value = parameter.variant();
        ++index;
        if (const auto* text = std::get_if<QString>(&value))
            bindText(statement, index, *text);
        else if (const auto* integer64 = std::get_if<qint64>(&value))
            sqlite3_bind_int64(statement, index, *integer64);
        else if (binding == Binding::TextAndInteger64)
            continue;
        else if (const auto* integer = std::get_if<int>(&value))
            sqlite3_bind_int64(statement, index, *integer);
        else if (const auto* real = std::get_if<double>(&value))
            sqlite3_bind_double(statement, index, *real);
        else
            sqlite3_bind_null(statement, index);
    }
}

}

void LocalDB::Finalize::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

QString SqlRow::text(int column) const
{
    const unsigned char* text = sqlite3_column_text(m_statement, column);
    return text ? QString::fromUtf8(reinterpret_cast<const char*>(text)) : QStringLiteral("");
}

std::optional<QString> SqlRow::optionalText(int column) const
{
    if (sqlite3_column_type(m_statement, column) == SQLITE_NULL)
        return std::nullopt;
    return text(column);
}

qint64 SqlRow::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

std::optional<qint64> SqlRow::optionalInteger(int column) const
{
    if (sqlite3_column_type(m_statement, column) == SQLITE_NULL)
        return std::nullopt;
    return integer(column);
}

double SqlRow::real(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

LocalDB::LocalDB(const QString& path, const SchemaFolders& schema, Scheduler& scheduler, UserDefaults& defaults,
    NotificationCentre& notifications)
    : m_scheduler(scheduler)
    , m_defaults(defaults)
    , m_notifications(notifications)
{
    QDir().mkpath(QFileInfo(path).path());
    if (sqlite3_open(path.toUtf8().constData(), &m_db) != SQLITE_OK) {
        log(QStringLiteral("LocalDB: failed to open ") + path);
        sqlite3_close(m_db);
        m_db = nullptr;
        return;
    }
    exec(QStringLiteral("PRAGMA journal_mode=WAL;"));
    exec(QStringLiteral("PRAGMA busy_timeout=5000;"));
    exec(QStringLiteral("PRAGMA foreign_keys=ON;"));
    applySchema(*this, schema);
}

LocalDB::~LocalDB()
{
    if (m_db)
        sqlite3_close(m_db);
}

bool LocalDB::inTransaction() const
{
    return m_db && !sqlite3_get_autocommit(m_db);
}

LocalDB::Statement LocalDB::prepare(const QByteArray& sql)
{
    sqlite3_stmt* statement = nullptr;
    if (m_db)
        sqlite3_prepare_v2(m_db, sql.constData(), -1, &statement, nullptr);
    return Statement(statement);
}

QString LocalDB::errorMessage() const
{
    return QString::fromUtf8(m_db ? sqlite3_errmsg(m_db) : "the database is not open");
}

void LocalDB::exec(const QString& sql)
{
    if (!m_db)
        return log(QStringLiteral("LocalDB exec error: ") + errorMessage());
    char* message = nullptr;
    if (sqlite3_exec(m_db, sql.toUtf8().constData(), nullptr, nullptr, &message) != SQLITE_OK)
        log(QStringLiteral("LocalDB exec error: ") + QString::fromUtf8(message));
    sqlite3_free(message);
}

bool LocalDB::run(const QString& sql, const QList<SqlValue>& parameters)
{
    const Statement statement = prepare(sql.toUtf8());
    if (!statement) {
        log(QStringLiteral("LocalDB.run prepare failed: %1 — %2").arg(errorMessage(), sql));
        return false;
    }
    bind(statement.get(), parameters, Binding::Every);
    const int code = sqlite3_step(statement.get());
    if (code == SQLITE_DONE || code == SQLITE_ROW)
        return true;
    log(QStringLiteral("LocalDB.run step failed (rc=%1): %2 — %3").arg(QString::number(code), errorMessage(), sql));
    return false;
}

std::optional<QString> LocalDB::scalar(const QString& sql, const QList<SqlValue>& parameters)
{
    const Statement statement = prepare(sql.toUtf8());
    if (!statement)
        return std::nullopt;
    bind(statement.get(), parameters, Binding::TextAndInteger64);
    if (sqlite3_step(statement.get()) != SQLITE_ROW)
        return std::nullopt;
    return SqlRow(statement.get()).optionalText(0);
}

void LocalDB::forEachRow(
    const QString& sql, const QList<SqlValue>& parameters, const std::function<void(const SqlRow&)>& visit)
{
    const Statement statement = prepare(sql.toUtf8());
    if (!statement)
        return;
    bind(statement.get(), parameters, Binding::Every);
    const SqlRow row(statement.get());
    while (sqlite3_step(statement.get()) == SQLITE_ROW)
        visit(row);
}

bool LocalDB::tableExists(const QString& table)
{
    return scalar(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name=? LIMIT 1;"), { table })
        .has_value();
}

bool LocalDB::columnExists(const QString& table, const QString& column)
{
    const auto names
        = rows(QStringLiteral("PRAGMA table_info(%1);").arg(table), {}, [](const SqlRow& row) { return row.text(1); });
    return names.contains(column);
}

std::optional<QString> LocalDB::tableSQL(const QString& table)
{
    return scalar(QStringLiteral("SELECT sql FROM sqlite_master WHERE type='table' AND name=? LIMIT 1;"), { table });
}

void LocalDB::addColumnIfMissing(const QString& table, const QString& column, const QString& definition)
{
    if (!columnExists(table, column))
        exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2;").arg(table, definition));
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

}
