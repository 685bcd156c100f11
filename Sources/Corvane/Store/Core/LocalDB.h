#pragma once

#include "Store/Core/SqlConnection.h"

namespace corvane {

class NotificationCentre;
class Scheduler;
class StoreHealth;
class StoreWatch;
class UserDefaults;

/// How long a write waits for another program: five seconds, or one frame of the screen.
enum class Patience { Full, Frame };

/// The one SQLite file of the program: a connection and its statement helpers, nothing more. Engines and the
/// tool server read and write the same file. A database that cannot be opened leaves a usable object whose
/// every answer is empty. The queries themselves are free functions in the *Queries files.
/// A null QString binds as empty text; NULL is an absent optional or a default `SqlValue`.
class LocalDB : public SqlConnection {
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

    /// Whether the file can be written, and if not, why.
    StoreHealth& health() { return *m_health; }

    /// What other programs change, told by subject.
    StoreWatch& watch() { return *m_watch; }

    /// Open and, as far as is known, writable: whoever looks at the file now and then leaves it alone otherwise.
    bool isSound() const;

    /// Lets go of the file, which can then be moved away; until `reopen` every answer is empty.
    void close();

    /// Opens what lies at the path now, as at the start. False where it cannot be opened, or where a damaged file was
    /// moved away from there and nothing has been put in its place.
    bool reopen();

    /// Makes a database with the current schema and nothing in it, elsewhere.
    bool makeEmpty(const QString& path) const;

    /// Begins a transaction and takes the right to write; see `Transaction`.
    bool begin(Patience patience);

    bool inTransaction() const; ///< false, too, where the database is not open

    /// Whether another process keeps the right to write, so that a write now would wait, and after five seconds
    /// fail. Waits a frame at most.
    bool isHeldElsewhere();

    /// A script of one or more statements; a failure is only logged.
    void exec(const QString& sql);

    /// One statement; false and a log line on failure.
    bool run(const QString& sql, const QList<SqlValue>& parameters = {});

    /// One statement; the number of rows that it changed itself, 0 and a log line on failure.
    qint64 changedRows(const QString& sql, const QList<SqlValue>& parameters);

    /// The first column of the first row as text. Binds only text and 64-bit integers: any other value stays
    /// unbound, and so NULL.
    std::optional<QString> scalar(const QString& sql, const QList<SqlValue>& parameters = {});

    /// Reads of tables that another process may not have made yet ask this first.
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

/// A JSON array of the texts; "[]" where it cannot be made.
QString jsonString(const QList<QString>& values);

/// The first of each value, compared without case, in input order.
QList<QString> orderedUnique(const QList<QString>& values);

/// The start of the current day in the user's time zone, in milliseconds since the epoch.
qint64 startOfTodayMs(qint64 nowMs);

/// ISO 8601 in UTC to the second, as the work records hold their times: two of them compare as text.
QString isoTime(qint64 ms);

}
