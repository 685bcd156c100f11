#pragma once

#include "Store/Core/SqlConnection.h"
#include "Store/Search/MessageChanges.h"

#include <QSet>

namespace corvane {

/// The progress of the index.
struct IndexState {
    bool usable = false; ///< the step succeeded
    bool faulty = false; ///< the index's own file could not be read or written
    bool complete = false; ///< every message was indexed once; until then searches do not use the index
    bool more = false; ///< another step is needed
    qint64 indexed = 0; ///< number of indexed messages while it is being built
    qint64 total = 0;
};

/// The index for searching messages: trigrams (FTS5) of body, transcript and subject, and marks for conversation,
/// sender and media type, in a separate file beside the database. Other programs write to the database without updating
/// it. Documents are numbered by the time of their message, so that the newest come first and a VACUUM of the database
/// changes nothing. The index stores no text: each candidate is verified against its message, so outdated entries of a
/// changed message find nothing.
class SearchIndex : public SqlConnection {
public:
    using Stopped = std::shared_ptr<const std::atomic<bool>>;

    static QString pathBeside(const QString& databasePath);
    static void remove(const QString& path);

    /// Opens the file for writing; creates it if it is missing or has another format.
    SearchIndex(const QString& path, const Stopped& stopped);

    /// One step of the first build, or of indexing new messages and those in `changed`; takes a fraction of a second.
    IndexState advance(SqlConnection& database, const MessageChanges::Rows& changed);

    /// Compares a batch of messages, starting at `from`, with the index, and indexes those that differ: finds changes
    /// by other programs. Returns the rowid to continue from, nothing at the end. `startedMs` is when the sweep began,
    /// which is kept at its end.
    std::optional<qint64> sweep(SqlConnection& database, qint64 from, qint64 startedMs);

private:
    struct Document {
        qint64 ts = 0;
        qint64 rowid = 0;
        QString words;
        QString conversation;
        QString sender; ///< of a received message; may be empty, like the next
        QString media;
    };

    void begin();
    bool commit();
    bool run(const char* sql, const QList<SqlValue>& parameters = {});
    qint64 value(const QString& name);
    void setValue(const QString& name, qint64 value);
    bool fitsDatabase(SqlConnection& database);
    void startAnew();
    void build(SqlConnection& database, IndexState& state);
    void takeNew(SqlConnection& database, IndexState& state);
    void takeChanged(SqlConnection& database, const MessageChanges::Rows& changed);
    QString mark(const QString& column, const QString& name);
    void add(const Document& document);
    static QList<Document> documents(
        SqlConnection& database, const QString& condition, const QList<SqlValue>& parameters);

    Stopped m_isStopped;
    QSet<std::pair<QString, QString>> m_known; ///< columns and names stored in the file
};

}
