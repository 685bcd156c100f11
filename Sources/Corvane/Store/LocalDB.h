#pragma once

#include <QList>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

struct sqlite3;
struct sqlite3_stmt;

namespace corvane {

class NotificationCentre;
class Scheduler;
class UserDefaults;

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

/// One row under a running statement; valid only inside the callback that receives it.
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

/// The one SQLite file of the program: a connection and its statement helpers, nothing more. Engines and the
/// tool server read and write the same file. A database that cannot be opened leaves a usable object whose
/// every answer is empty. The queries themselves are free functions in the *Queries files.
/// A null QString binds as empty text; NULL is an absent optional or a default `SqlValue`.
class LocalDB {
public:
    /// Where the two schema files are looked for, in this order.
    struct SchemaFolders {
        QString resources; ///< "{resources}/local-schema/{name}"; empty where there is no resource folder
        QString home; ///< "{home}/nimb/apps/nimb-local/local-schema/{name}"
    };

    /// Opens the file at `path`, making it and its folder where they are missing, and brings the schema up to
    /// date. The references must outlive the object.
    LocalDB(const QString& path, const SchemaFolders& schema, Scheduler& scheduler, UserDefaults& defaults,
        NotificationCentre& notifications);
    ~LocalDB();
    LocalDB(const LocalDB&) = delete;
    LocalDB& operator=(const LocalDB&) = delete;

    bool isOpen() const { return m_db != nullptr; }
    bool inTransaction() const; ///< false, too, where the database is not open

    /// A script of one or more statements; a failure is only logged.
    void exec(const QString& sql);

    /// One statement; false and a log line on failure.
    bool run(const QString& sql, const QList<SqlValue>& parameters = {});

    /// The first column of the first row as text. Binds only text and 64-bit integers: any other value stays
    /// unbound, and so NULL.
    std::optional<QString> scalar(const QString& sql, const QList<SqlValue>& parameters = {});

    /// Every row through `read`; empty, with no log line, where the statement does not prepare.
    template <typename Read> auto rows(const QString& sql, const QList<SqlValue>& parameters, Read read)
    {
        QList<std::invoke_result_t<Read, const SqlRow&>> result;
        forEachRow(sql, parameters, [&](const SqlRow& row) { result.append(read(row)); });
        return result;
    }

    /// The first row through `read`, or nothing.
    template <typename Read> auto firstRow(const QString& sql, const QList<SqlValue>& parameters, Read read)
    {
        std::optional<std::invoke_result_t<Read, const SqlRow&>> result;
        forEachRow(sql, parameters, [&](const SqlRow& row) {
            if (!result)
                result = read(row);
        });
        return result;
    }

    /// Reads of tables that another process may not have made yet ask this first.
    bool tableExists(const QString& table);
    bool columnExists(const QString& table, const QString& column); ///< exact, case-sensitive
    std::optional<QString> tableSQL(const QString& table);
    void addColumnIfMissing(const QString& table, const QString& column, const QString& definition);

    qint64 nowMs() const; ///< milliseconds since the epoch
    UserDefaults& defaults() { return m_defaults; }
    NotificationCentre& notifications() { return m_notifications; }

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

    Statement prepare(const QByteArray& sql);
    QString errorMessage() const;
    void forEachRow(
        const QString& sql, const QList<SqlValue>& parameters, const std::function<void(const SqlRow&)>& visit);

    sqlite3* m_db = nullptr;
    Scheduler& m_scheduler;
    UserDefaults& m_defaults;
    NotificationCentre& m_notifications;
};

/// A JSON array of the texts; "[]" where it cannot be made.
QString jsonString(const QList<QString>& values);

/// The first of each value, compared without case, in input order.
QList<QString> orderedUnique(const QList<QString>& values);

/// The start of the current day in the user's time zone, in milliseconds since the epoch.
qint64 startOfTodayMs(qint64 nowMs);

}
