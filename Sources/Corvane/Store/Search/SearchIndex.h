#pragma once

#include "Store/Core/SqlConnection.h"
#include "Store/Search/MessageChanges.h"

#include <QSet>

namespace corvane {

/// How far the index has come.
struct IndexState {
    bool usable = false; ///< the step was done
    bool faulty = false; ///< the index's own file could not be read or written
    bool complete = false; ///< every message was taken in once; until then searches do without the index
    bool more = false; ///< another step is needed now
    qint64 indexed = 0; ///< messages taken in, while it is being built
    qint64 total = 0;
};

/// The index behind the search for messages: trigrams (FTS5) of body, transcript and subject, and marks for the
/// conversation, the sender and the kind of file, in a file of its own beside the database. Other programs write the
/// database without knowing of it. A document is numbered by its message's time, so that the newest come first and a
/// VACUUM of the database changes nothing; the index keeps no text, and each find is checked against the message
/// itself. What a document said before a change stays and finds nothing.
class SearchIndex : public SqlConnection {
public:
    using Stopped = std::shared_ptr<const std::atomic<bool>>;

    static QString pathBeside(const QString& databasePath);
    static void remove(const QString& path);

    /// Opens the file for writing and makes it where it is missing or of another form.
    SearchIndex(const QString& path, const Stopped& stopped);

    /// One step of the first build, or of taking in new messages and those of `changed`; a fraction of a second.
    IndexState advance(SqlConnection& database, const MessageChanges::Rows& changed);

    /// Compares a batch of messages with the index, from `from` on, and takes in those that it does not know as they
    /// are; the rowid to go on from, nothing at the end. Finds what other programs changed.
    std::optional<qint64> sweep(SqlConnection& database, qint64 from);

private:
    struct Document {
        qint64 ts = 0;
        qint64 rowid = 0;
        QString words;
        QString conversation;
        QString sender; ///< of a received message; may be empty, as may be the next
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
    QSet<std::pair<QString, QString>> m_known; ///< columns and names that are in the file
};

}
