#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace corvane {

class StoreHealth;

/// A value to bind: text, an integer, a real number, or NULL. A boolean is passed as 0 or 1.
class SqlValue {
public:
    SqlValue() = default; ///< NULL
    SqlValue(const QString& text)
        : m_value(text)
    {
    }
    SqlValue(qint64 integer)
        : m_value(integer)
    {
    }
    SqlValue(int integer)
        : m_value(integer)
    {
    }
    SqlValue(double real)
        : m_value(real)
    {
    }
    SqlValue(bool) = delete;
    template <typename Value> SqlValue(const std::optional<Value>& value)
    {
        if (value)
            m_value = *value;
    }

    using Variant = std::variant<std::monostate, QString, qint64, int, double>;
    const Variant& variant() const { return m_value; }

private:
    Variant m_value;
};

/// A row of the running statement; valid only inside the callback that receives it.
class SqlRow {
public:
    explicit SqlRow(sqlite3_stmt* statement)
        : m_statement(statement)
    {
    }

    QString text(int column) const; ///< NULL reads as the empty string
    std::optional<QString> optionalText(int column) const;
    qint64 integer(int column) const; ///< NULL reads as 0
    std::optional<qint64> optionalInteger(int column) const;
    double real(int column) const;

private:
    sqlite3_stmt* m_statement;
};

/// A connection to an SQLite file with its queries; keeps its statements prepared. If it could not be opened, every
/// query returns nothing.
class SqlConnection {
public:
    ~SqlConnection();
    SqlConnection(const SqlConnection&) = delete;
    SqlConnection& operator=(const SqlConnection&) = delete;

    /// Another read-only connection to the file, for one long query on its own thread; the query is aborted within a
    /// millisecond after `stopped` is set.
    static std::unique_ptr<SqlConnection> reader(const QString& path, std::shared_ptr<const std::atomic<bool>> stopped);

    bool isOpen() const { return m_db != nullptr; }
    const QString& path() const { return m_path; }

    /// All rows through `read`; empty, without a log line, if the statement does not prepare.
    template <typename Read> auto rows(const QString& sql, const QList<SqlValue>& parameters, Read read)
    {
        QList<std::invoke_result_t<Read, const SqlRow&>> result;
        visitRows(sql, parameters, [&](const SqlRow& row) {
            result.append(read(row));
            return true;
        });
        return result;
    }

    /// The first row through `read`, or nothing.
    template <typename Read> auto firstRow(const QString& sql, const QList<SqlValue>& parameters, Read read)
    {
        std::optional<std::invoke_result_t<Read, const SqlRow&>> result;
        visitRows(sql, parameters, [&](const SqlRow& row) {
            result = read(row);
            return false;
        });
        return result;
    }

    /// Visits rows until `visit` returns false.
    void visitRows(
        const QString& sql, const QList<SqlValue>& parameters, const std::function<bool(const SqlRow&)>& visit);

    /// The result code of the first statement that failed since `forgetFailure`; 0 if none did.
    int failure() const { return m_failure; }
    void forgetFailure() { m_failure = 0; }

protected:
    /// Keeps the statement for its next use.
    struct Release {
        SqlConnection* connection;
        void operator()(sqlite3_stmt* statement) const { connection->release(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Release>;
    enum class Access { ReadOnly, ReadWrite };
    enum class Binding { Every, TextAndInteger64 };

    explicit SqlConnection(const QString& path); ///< not open yet

    void noteResultsIn(StoreHealth* health) { m_health = health; }
    bool openFile(Access access);
    void closeFile();

    Statement prepare(const QByteArray& sql);
    int step(sqlite3_stmt* statement);
    int noted(int resultCode); ///< returns the code, which is reported to the file's health
    /// A value that `binding` does not cover stays unbound, which SQLite reads as NULL.
    static void bind(sqlite3_stmt* statement, const QList<SqlValue>& parameters, Binding binding);

    sqlite3* m_db = nullptr;

private:
    void release(sqlite3_stmt* statement);
    void finalizeIdle();

    QString m_path;
    StoreHealth* m_health = nullptr;
    int m_failure = 0;
    QHash<QByteArray, sqlite3_stmt*> m_idle; ///< prepared and not in use, by their text
    std::shared_ptr<const std::atomic<bool>> m_stopped;
};

}
