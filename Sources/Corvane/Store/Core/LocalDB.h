#pragma once

#include "Store/Core/SqlConnection.h"

namespace corvane {

class NotificationCentre;
class Scheduler;
class StoreHealth;
class StoreWatch;
class UserDefaults;

/// How long a write waits for another program: five seconds, or one frame.
enum class Patience { Full, Frame };

/// The program's SQLite file: a connection and its statement helpers. Engines and the tool server use the same file. If
/// it cannot be opened, the object is still usable and returns empty results. The queries are free functions in the
/// *Queries files. A null QString binds as empty text; NULL is an absent optional or a default `SqlValue`.
class LocalDB : public SqlConnection {
public:
    /// Where the two schema files are searched, in this order.
    struct SchemaFolders {
        QString resources; ///< "{resources}/local-schema/{name}"; empty if there is no resource folder
        QString home; ///< "{home}/nimb/apps/nimb-local/local-schema/{name}"
    };

    /// Opens the file at `path`, creating it and its folder if necessary, and migrates the schema. The references must
    /// outlive the object.
    LocalDB(const QString& path, const SchemaFolders& schema, Scheduler& scheduler, UserDefaults& defaults,
        NotificationCentre& notifications);
    ~LocalDB();

    /// Whether the file can be written, and if not, why.
    StoreHealth& health() { return *m_health; }

    /// Changes by other programs, by subject.
    StoreWatch& watch() { return *m_watch; }

    /// Open and, as far as is known, writable; polling code checks this first.
    bool isSound() const;

    /// Closes the file, which can then be moved; until `reopen` all results are empty.
    void close();

    /// Opens the file that is now at the path, as at the start. False if it cannot be opened, or if a corrupt file was
    /// moved away and nothing has replaced it.
    bool reopen();

    /// Creates an empty database with the current schema at another path.
    bool makeEmpty(const QString& path) const;

    /// Begins an immediate transaction; see `Transaction`.
    bool begin(Patience patience);

    bool inTransaction() const; ///< false, too, if the database is not open

    /// Whether another process holds the write lock, so that a write now would block, and fail after five seconds.
    /// Waits at most one frame.
    bool isHeldElsewhere();

    /// A script of one or more statements; a failure is only logged.
    void exec(const QString& sql);

    /// One statement; false and a log line on failure.
    bool run(const QString& sql, const QList<SqlValue>& parameters = {});

    /// One statement; returns the number of rows that it changed directly, 0 and a log line on failure.
    qint64 changedRows(const QString& sql, const QList<SqlValue>& parameters);

    /// The first column of the first row as text. Binds only text and 64-bit integers: any other value stays unbound,
    /// which reads as NULL.
    std::optional<QString> scalar(const QString& sql, const QList<SqlValue>& parameters = {});

    /// Queries of tables that another process may not have created yet check this first.
    bool tableExists(const QString& table);
    bool columnExists(const QString& table, const QString& column); ///< exact, case-sensitive
    std::optional<QString> tableSQL(const QString& table);
    void addColumnIfMissing(const QString& table, const QString& column, const QString& definition);

    qint64 nowMs() const; ///< milliseconds since the epoch
    UserDefaults& defaults() { return m_defaults; }
    NotificationCentre& notifications() { return m_notifications; }

private:
    bool openFile();
    bool takesWrites();
    QString errorMessage() const;

    SchemaFolders m_schema;
    Scheduler& m_scheduler;
    UserDefaults& m_defaults;
    NotificationCentre& m_notifications;
    std::unique_ptr<StoreHealth> m_health;
    std::unique_ptr<StoreWatch> m_watch;
};

/// A JSON array of the texts; "[]" if it cannot be built.
QString jsonString(const QList<QString>& values);

/// Removes duplicates, ignoring case; keeps the first of each in input order.
QList<QString> orderedUnique(const QList<QString>& values);

/// The start of the current day in the user's time zone, in milliseconds since the epoch.
qint64 startOfTodayMs(qint64 nowMs);

/// ISO 8601 in UTC with seconds, the format of the work records: they compare as text.
QString isoTime(qint64 ms);

}
