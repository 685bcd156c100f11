#include "Store/Search/SearchIndex.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Search/SearchIndexFile.h"
#include "Store/Search/SearchQueries.h"

#include <QFile>
#include <QStringList>
#include <algorithm>
#include <sqlite3.h>

namespace corvane {

namespace {

constexpr int form = 2; ///< files with another number are rebuilt
constexpr int stepRows = 4000;
constexpr int sweepRows = 4000;
constexpr qint64 slotsOfTime = 1LL << documentSlotBits;
constexpr int busyMs = 1000;
constexpr int stepsBetweenLooks = 5000;

int isStopped(void* stopped)
{
    return static_cast<const std::atomic<bool>*>(stopped)->load() ? 1 : 0;
}

bool isNumbered(qint64 ts)
{
    return ts >= 0 && ts <= lastNumberedTime;
}

qint64 numberOf(SqlConnection& database, const QString& sql, const QList<SqlValue>& parameters = {})
{
    return database.firstRow(sql, parameters, [](const SqlRow& row) { return row.integer(0); }).value_or(0);
}

}

QString SearchIndex::pathBeside(const QString& databasePath)
{
    return databasePath + u"-search"_s;
}

void SearchIndex::remove(const QString& path)
{
    for (const QString& file : { path, path + u"-wal"_s, path + u"-shm"_s })
        QFile::remove(file);
}

SearchIndex::SearchIndex(const QString& path, const Stopped& stopped)
    : SqlConnection(path)
    , m_isStopped(stopped)
{
    QFile file(path); // readable only by its owner from the first byte on
    if (file.open(QIODevice::Append))
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.close();
    if (!openFile(Access::ReadWrite))
        return;
    sqlite3_busy_timeout(m_db, busyMs);
    sqlite3_progress_handler(m_db, stepsBetweenLooks, isStopped, const_cast<std::atomic<bool>*>(m_isStopped.get()));
    run("PRAGMA journal_mode=WAL;");
    run("PRAGMA synchronous=NORMAL;"); // what a power cut loses is indexed again
    if (numberOf(*this, u"PRAGMA user_version;"_s) != form)
        startAnew();
}

bool SearchIndex::run(const char* sql, const QList<SqlValue>& parameters)
{
    const Statement statement = prepare(sql);
    if (!statement)
        return false;
    bind(statement.get(), parameters, Binding::Every);
    int code = step(statement.get());
    while (code == SQLITE_ROW)
        code = step(statement.get());
    return code == SQLITE_DONE;
}

void SearchIndex::begin()
{
    forgetFailure();
    run("BEGIN IMMEDIATE;");
}

bool SearchIndex::commit()
{
    const bool kept = failure() == 0 && run("COMMIT;");
    if (!kept && m_db && !sqlite3_get_autocommit(m_db))
        run("ROLLBACK;");
    return kept;
}

qint64 SearchIndex::value(const QString& name)
{
    return indexValue(*this, name).value_or(0);
}

void SearchIndex::setValue(const QString& name, qint64 value)
{
    run("INSERT INTO state(name, value) VALUES(?,?) ON CONFLICT(name) DO UPDATE SET value=excluded.value;",
        { name, value });
}

void SearchIndex::startAnew()
{
    begin();
    for (const char* table : { "state", "document", "crowded", "name", "text" })
        run(QByteArray("DROP TABLE IF EXISTS ").append(table).append(';').constData());
    run("CREATE TABLE state(name TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;");
    run("CREATE TABLE document(number INTEGER PRIMARY KEY, hash INTEGER NOT NULL);");
    run("CREATE TABLE crowded(ts INTEGER PRIMARY KEY);"); // times with messages that are not in the index
    run("CREATE TABLE name(\"column\" TEXT, name TEXT, PRIMARY KEY(\"column\", name)) WITHOUT ROWID;");
    run("CREATE VIRTUAL TABLE text USING fts5(words, conversation, sender, media, content='', columnsize=0, "
        "tokenize='trigram');");
    run("PRAGMA user_version=2;");
    static_assert(form == 2);
    commit();
}

bool SearchIndex::fitsDatabase(SqlConnection& database)
{
    const qint64 last = value(u"rowid"_s);
    return last == 0 || indexProbe(database, last) == value(u"probe"_s);
}

QList<SearchIndex::Document> SearchIndex::documents(
    SqlConnection& database, const QString& condition, const QList<SqlValue>& parameters)
{
    const QString sql = u"SELECT m.ts, m.rowid, m.body, at.transcript, m.subject, m.conversation_id,\n"
                        "  CASE m.direction WHEN 'IN' THEN m.sender END,\n"
                        "  COALESCE(NULLIF(m.media_type,''), CASE WHEN m.media_path != '' THEN 'file' END)\n"
                        "FROM unified_message m LEFT JOIN audio_transcript at ON at.message_id=m.id\n"
                        "WHERE m.deleted_at IS NULL AND "_s;
    return database.rows(sql + condition + u';', parameters, [](const SqlRow& row) {
        QStringList words { row.text(2), row.text(3), row.text(4) };
        words.removeAll(QString());
        return Document { row.integer(0), row.integer(1), words.join(u'\n'), row.text(5), row.text(6), row.text(7) };
    });
}

/// Stores the name, so that a part of it can be searched for.
QString SearchIndex::mark(const QString& column, const QString& name)
{
    if (name.isEmpty())
        return {};
    if (const auto key = std::pair(column, name); !m_known.contains(key)) {
        run("INSERT OR IGNORE INTO name(\"column\", name) VALUES(?,?);", { column, name });
        m_known.insert(key);
    }
    return indexMark(name);
}

void SearchIndex::add(const Document& document)
{
    if (!isNumbered(document.ts)) {
        run("INSERT OR IGNORE INTO crowded(ts) VALUES(?);", { document.ts });
        return;
    }
    const qint64 first = documentNumberAt(document.ts);
    const qint64 hash = indexHash(
        QStringList { document.words, document.conversation, document.sender, document.media }.join(QChar(0)));
    qint64 number = first;
    bool known = false;
    visitRows("SELECT number, hash FROM document WHERE number BETWEEN ? AND ? ORDER BY number;",
        { first, first + slotsOfTime - 1 }, [&](const SqlRow& row) {
            number = row.integer(0) + 1;
            known = row.integer(1) == hash;
            return !known;
        });
    if (known)
        return;
    if (number >= first + slotsOfTime) {
        run("INSERT OR IGNORE INTO crowded(ts) VALUES(?);", { document.ts });
        return;
    }
    run("INSERT INTO document(number, hash) VALUES(?,?);", { number, hash });
    run("INSERT INTO text(rowid, words, conversation, sender, media) VALUES(?,?,?,?,?);",
        { number, document.words, indexMark(document.conversation), mark(u"sender"_s, document.sender),
            mark(u"media"_s, document.media) });
}

IndexState SearchIndex::advance(SqlConnection& database, const MessageChanges::Rows& changed)
{
    IndexState state;
    state.faulty = !isOpen();
    if (!isOpen() || !database.isOpen())
        return state;
    if (!fitsDatabase(database)) {
        log(u"SearchIndex: the database is another one; the index is built anew"_s);
        startAnew();
    }
    begin();
    if (value(u"complete"_s) == 0)
        build(database, state);
    else
        takeNew(database, state);
    takeChanged(database, changed);
    state.complete = value(u"complete"_s) != 0;
    state.usable = database.failure() == 0 && commit();
    state.faulty = failure() != 0 && !m_isStopped->load();
    return state;
}

/// In chronological order, which writes the index in one pass and keeps it small.
void SearchIndex::build(SqlConnection& database, IndexState& state)
{
    if (value(u"indexed"_s) == 0) {
        setValue(u"newest"_s, numberOf(database, u"SELECT MAX(rowid) FROM unified_message;"_s));
        setValue(u"total"_s, numberOf(database, u"SELECT COUNT(*) FROM unified_message WHERE deleted_at IS NULL;"_s));
    }
    const bool begun = value(u"indexed"_s) > 0;
    const SqlValue ts = value(u"ts"_s);
    const QList<Document> batch = begun
        ? documents(database, u"m.ts >= ? AND (m.ts, m.rowid) > (?, ?) ORDER BY m.ts, m.rowid LIMIT ?"_s,
              { ts, ts, value(u"at"_s), stepRows })
        : documents(database, u"1 ORDER BY m.ts, m.rowid LIMIT ?"_s, { stepRows });
    for (const Document& document : batch)
        add(document);
    state.total = value(u"total"_s);
    state.indexed = value(u"indexed"_s) + batch.size();
    state.more = true;
    if (!batch.isEmpty()) {
        setValue(u"ts"_s, batch.last().ts);
        setValue(u"at"_s, batch.last().rowid);
        setValue(u"indexed"_s, state.indexed);
    }
    if (batch.size() < stepRows && database.failure() == 0) {
        const qint64 newest = value(u"newest"_s);
        setValue(u"rowid"_s, newest);
        setValue(u"probe"_s, indexProbe(database, newest));
        setValue(u"complete"_s, 1);
    }
}

void SearchIndex::takeNew(SqlConnection& database, IndexState& state)
{
    const QList<Document> batch
        = documents(database, u"m.rowid > ? ORDER BY m.rowid LIMIT ?"_s, { value(u"rowid"_s), stepRows });
    for (const Document& document : batch)
        add(document);
    state.more = batch.size() == stepRows;
    if (batch.isEmpty())
        return;
    setValue(u"rowid"_s, batch.last().rowid);
    setValue(u"probe"_s, indexProbe(database, batch.last().rowid));
}

void SearchIndex::takeChanged(SqlConnection& database, const MessageChanges::Rows& changed)
{
    const auto take = [&](const QString& condition, const QSet<qint64>& rows) {
        if (rows.isEmpty())
            return;
        for (const Document& document : documents(database, condition, { jsonNumbers(rows.values()) }))
            add(document);
    };
    take(u"m.rowid IN (SELECT value FROM json_each(?))"_s, changed.messages);
    take(u"m.id IN (SELECT message_id FROM audio_transcript WHERE rowid IN (SELECT value FROM json_each(?)))"_s,
        changed.transcripts);
}

std::optional<qint64> SearchIndex::sweep(SqlConnection& database, qint64 from, qint64 startedMs)
{
    if (!isOpen() || !database.isOpen())
        return std::nullopt;
    begin();
    const QList<Document> batch = documents(database, u"m.rowid > ? ORDER BY m.rowid LIMIT ?"_s, { from, sweepRows });
    for (const Document& document : batch)
        add(document);
    if (batch.size() < sweepRows && database.failure() == 0)
        setValue(u"swept"_s, startedMs);
    const bool kept = commit();
    return kept && batch.size() == sweepRows ? std::optional(batch.last().rowid) : std::nullopt;
}

}
