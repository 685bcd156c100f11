#include "Store/Core/SqlConnection.h"

#include "Foundation/Literals.h"
#include "Store/Core/StoreHealth.h"

#include <sqlite3.h>

namespace corvane {

namespace {

// The number of SQLite VM steps between two checks for cancellation: well below a millisecond.
constexpr int stepsBetweenLooks = 5000;
constexpr qsizetype idleLimit = 128;
constexpr int readerBusyMs = 1000; // a reader waits only while a file recovers from a crash

int isStopped(void* stopped)
{
    return static_cast<const std::atomic<bool>*>(stopped)->load() ? 1 : 0;
}

void bindText(sqlite3_stmt* statement, int index, const QString& text)
{
    sqlite3_bind_text(statement, index, text.toUtf8().constData(), -1, SQLITE_TRANSIENT);
}

}

QString SqlRow::text(int column) const
{
    const unsigned char* text = sqlite3_column_text(m_statement, column);
    return text ? QString::fromUtf8(reinterpret_cast<const char*>(text)) : u""_s;
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

SqlConnection::SqlConnection(const QString& path)
    : m_path(path)
{
}

SqlConnection::~SqlConnection()
{
    closeFile();
}

bool SqlConnection::openFile(Access access)
{
    const int flags = access == Access::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (noted(sqlite3_open_v2(m_path.toUtf8().constData(), &m_db, flags, nullptr)) == SQLITE_OK)
        return true;
    closeFile();
    return false;
}

void SqlConnection::closeFile()
{
    finalizeIdle();
    sqlite3_close(std::exchange(m_db, nullptr));
}

void SqlConnection::finalizeIdle()
{
    for (sqlite3_stmt* statement : std::exchange(m_idle, {}))
        sqlite3_finalize(statement);
}

void SqlConnection::release(sqlite3_stmt* statement)
{
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    const QByteArray sql(sqlite3_sql(statement));
    if (m_idle.contains(sql)) {
        sqlite3_finalize(statement);
        return;
    }
    if (m_idle.size() == idleLimit)
        finalizeIdle();
    m_idle.insert(sql, statement);
}

std::unique_ptr<SqlConnection> SqlConnection::reader(
    const QString& path, std::shared_ptr<const std::atomic<bool>> stopped)
{
    std::unique_ptr<SqlConnection> reader(new SqlConnection(path));
    reader->m_stopped = std::move(stopped);
    if (!reader->openFile(Access::ReadOnly))
        return reader;
    sqlite3_busy_timeout(reader->m_db, readerBusyMs);
    // Polled: an interrupt from outside would be lost between opening and the first step.
    sqlite3_progress_handler(
        reader->m_db, stepsBetweenLooks, isStopped, const_cast<std::atomic<bool>*>(reader->m_stopped.get()));
    return reader;
}

SqlConnection::Statement SqlConnection::prepare(const QByteArray& sql)
{
    sqlite3_stmt* statement = m_idle.take(sql);
    if (!m_db)
        m_failure = SQLITE_CANTOPEN;
    else if (!statement)
        noted(sqlite3_prepare_v3(m_db, sql.constData(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    return Statement(statement, Release { this });
}

int SqlConnection::step(sqlite3_stmt* statement)
{
    return noted(sqlite3_step(statement));
}

int SqlConnection::noted(int resultCode)
{
    if (resultCode == SQLITE_OK || resultCode == SQLITE_ROW || resultCode == SQLITE_DONE)
        return resultCode;
    if (m_failure == 0)
        m_failure = resultCode;
    if (m_health)
        m_health->note(resultCode);
    return resultCode;
}

void SqlConnection::bind(sqlite3_stmt* statement, const QList<SqlValue>& parameters, Binding binding)
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

void SqlConnection::visitRows(
    const QString& sql, const QList<SqlValue>& parameters, const std::function<bool(const SqlRow&)>& visit)
{
    const Statement statement = prepare(sql.toUtf8());
    if (!statement)
        return;
    bind(statement.get(), parameters, Binding::Every);
    const SqlRow row(statement.get());
    while (step(statement.get()) == SQLITE_ROW && visit(row)) { }
}

}
