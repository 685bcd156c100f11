#include "Store/Search/SearchIndex.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QFile>
#include <QStringList>
#include <algorithm>
#include <sqlite3.h>

namespace corvane {

namespace {

constexpr int form = 1; ///< another number makes older files begin anew
constexpr int stepRows = 4000;
constexpr int sweepRows = 4000;
constexpr int slotBits = 12; ///< documents of one millisecond: 4,096
constexpr qint64 slotsOfTime = 1LL << slotBits;
constexpr qint64 lastTime = (1LL << 50) - 1;
constexpr int busyMs = 1000;
constexpr int stepsBetweenLooks = 5000;
constexpr int shortestPhrase = 3; ///< code points
constexpr int firstChunk = 64; ///< times that are checked at once; the next chunk is four times as large

int isStopped(void* stopped)
{
    return static_cast<const std::atomic<bool>*>(stopped)->load() ? 1 : 0;
}

/// FNV-1a: the same on every machine and in every run.
qint64 hashOf(const QString& text)
{
    quint64 hash = 14695981039346656037ULL;
    for (const char byte : text.toUtf8())
        hash = (hash ^ quint8(byte)) * 1099511628211ULL;
    return qint64(hash);
}

bool isNumbered(qint64 ts)
{
    return ts >= 0 && ts <= lastTime;
}

/// The first number that a document of that time may have.
qint64 numberAt(qint64 ts)
{
    return std::clamp<qint64>(ts, 0, lastTime + 1) << slotBits;
}

/// The longest run of characters that stand for themselves in a LIKE pattern; empty where a trigram would not fit.
QString phraseOf(const QString& query)
{
    QString longest;
    qsizetype length = 0;
    for (const QString& run : QString(query).replace(u'_', u'%').split(u'%')) {
        const qsizetype points = run.toUcs4().size();
        if (points > length) {
            longest = run;
            length = points;
        }
    }
    const bool fits = length >= shortestPhrase && !longest.contains(QChar(0));
    return fits ? u'"' + longest.replace(u'"', u"\"\""_s) + u'"' : QString();
}

std::optional<qint64> valueOf(SqlConnection& index, const QString& name)
{
    return index.firstRow(
        "SELECT value FROM state WHERE name=?;", { name }, [](const SqlRow& row) { return row.integer(0); });
}

qint64 numberOf(SqlConnection& database, const QString& sql, const QList<SqlValue>& parameters = {})
{
    return database.firstRow(sql, parameters, [](const SqlRow& row) { return row.integer(0); }).value_or(0);
}

/// Tells whether the database is still the one that was indexed: what lies at the last rowid that was taken in.
qint64 probeAt(SqlConnection& database, qint64 rowid)
{
    return database
        .firstRow("SELECT id FROM unified_message WHERE rowid=?;", { rowid },
            [](const SqlRow& row) { return hashOf(row.text(0)); })
        .value_or(0);
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
    QFile file(path); // readable by its owner alone from the first byte on
    if (file.open(QIODevice::Append))
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.close();
    if (!openFile(Access::ReadWrite))
        return;
    sqlite3_busy_timeout(m_db, busyMs);
    sqlite3_progress_handler(m_db, stepsBetweenLooks, isStopped, const_cast<std::atomic<bool>*>(m_isStopped.get()));
    run("PRAGMA journal_mode=WAL;");
    run("PRAGMA synchronous=NORMAL;"); // what a power cut takes is taken in again
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
    return valueOf(*this, name).value_or(0);
}

void SearchIndex::setValue(const QString& name, qint64 value)
{
    run("INSERT INTO state(name, value) VALUES(?,?) ON CONFLICT(name) DO UPDATE SET value=excluded.value;",
        { name, value });
}

void SearchIndex::startAnew()
{
    begin();
    for (const char* table : { "state", "document", "crowded", "text" })
        run(QByteArray("DROP TABLE IF EXISTS ").append(table).append(';').constData());
    run("CREATE TABLE state(name TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;");
    run("CREATE TABLE document(number INTEGER PRIMARY KEY, hash INTEGER NOT NULL);");
    run("CREATE TABLE crowded(ts INTEGER PRIMARY KEY);"); // times whose messages are not all in the index
    run("CREATE VIRTUAL TABLE text USING fts5(words, content='', columnsize=0, tokenize='trigram');");
    run("PRAGMA user_version=1;");
    static_assert(form == 1);
    commit();
}

bool SearchIndex::fitsDatabase(SqlConnection& database)
{
    const qint64 last = value(u"rowid"_s);
    return last == 0 || probeAt(database, last) == value(u"probe"_s);
}

QList<SearchIndex::Document> SearchIndex::documents(
    SqlConnection& database, const QString& condition, const QList<SqlValue>& parameters)
{
    const QString sql = u"SELECT m.ts, m.rowid, m.body, at.transcript, m.subject FROM unified_message m\n"
                        "LEFT JOIN audio_transcript at ON at.message_id=m.id\nWHERE m.deleted_at IS NULL AND "_s;
    return database.rows(sql + condition + u';', parameters, [](const SqlRow& row) {
        QStringList parts { row.text(2), row.text(3), row.text(4) };
        parts.removeAll(QString());
        return Document { row.integer(0), row.integer(1), parts.join(u'\n') };
    });
}

void SearchIndex::add(const Document& document)
{
    if (document.text.isEmpty())
        return;
    if (!isNumbered(document.ts)) {
        run("INSERT OR IGNORE INTO crowded(ts) VALUES(?);", { document.ts });
        return;
    }
    const qint64 first = numberAt(document.ts);
    const qint64 hash = hashOf(document.text);
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
    run("INSERT INTO text(rowid, words) VALUES(?,?);", { number, document.text });
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

/// In the order of time, which writes the index in one pass and keeps it small.
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
        setValue(u"probe"_s, probeAt(database, newest));
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
    setValue(u"probe"_s, probeAt(database, batch.last().rowid));
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

std::optional<qint64> SearchIndex::sweep(SqlConnection& database, qint64 from)
{
    if (!isOpen() || !database.isOpen())
        return std::nullopt;
    begin();
    const QList<Document> batch = documents(database, u"m.rowid > ? ORDER BY m.rowid LIMIT ?"_s, { from, sweepRows });
    for (const Document& document : batch)
        add(document);
    const bool kept = commit();
    return kept && batch.size() == sweepRows ? std::optional(batch.last().rowid) : std::nullopt;
}

std::optional<QList<MessageHit>> searchByIndex(SqlConnection& database, SqlConnection& index, const SearchQuery& query,
    int limit, const MessageChanges::Rows& changed)
{
    const QString phrase = phraseOf(query.text);
    if (phrase.isEmpty() || !query.places.isEmpty() || !index.isOpen() || !database.isOpen())
        return std::nullopt;
    const auto run = [&index](const QString& sql) {
        index.visitRows(sql, {}, [](const SqlRow&) { return false; });
    };
    run(u"BEGIN;"_s); // what the index says of itself and what it finds are of one moment
    const bool complete = valueOf(index, u"complete"_s).value_or(0) != 0;
    const qint64 newest = valueOf(index, u"rowid"_s).value_or(0);
    if (!complete || (newest != 0 && probeAt(database, newest) != valueOf(index, u"probe"_s))) {
        run(u"COMMIT;"_s);
        return std::nullopt;
    }

    QList<qint64> times
        = timesOfMatches(database, query, { newest, changed.messages.values(), changed.transcripts.values() });
    const QList<qint64> crowded
        = index.rows("SELECT ts FROM crowded;", {}, [](const SqlRow& row) { return row.integer(0); });
    for (const MessageHit& hit : searchMessagesAt(database, query, crowded, limit))
        times.append(hit.ts);

    QList<qint64> unchecked;
    qsizetype chunk = firstChunk;
    qsizetype found = 0;
    std::optional<qint64> last;
    const auto check = [&] {
        for (const MessageHit& hit : searchMessagesAt(database, query, std::exchange(unchecked, {}), limit)) {
            times.append(hit.ts);
            ++found;
        }
        chunk *= 4;
    };
    index.visitRows("SELECT rowid FROM text WHERE text MATCH ? AND rowid >= ? AND rowid < ? ORDER BY rowid DESC;",
        { phrase, numberAt(query.afterMs.value_or(0)), numberAt(query.beforeMs.value_or(lastTime + 1)) },
        [&](const SqlRow& row) {
            const qint64 ts = row.integer(0) >> slotBits;
            if (std::exchange(last, ts) == ts)
                return true;
            if (unchecked.size() >= chunk)
                check();
            unchecked.append(ts);
            return found < limit;
        });
    check();
    run(u"COMMIT;"_s);
    if (index.failure() != 0)
        return std::nullopt;
    std::ranges::sort(times, std::greater());
    const auto rest = std::ranges::unique(times);
    times.erase(rest.begin(), rest.end());
    times.resize(std::min<qsizetype>(times.size(), std::max(limit, 0)));
    return searchMessagesAt(database, query, times, limit);
}

std::optional<int> percentBuilt(SqlConnection& index)
{
    const auto total = valueOf(index, u"total"_s);
    if (!total || valueOf(index, u"complete"_s).value_or(0) != 0)
        return std::nullopt;
    return int(std::min<qint64>(99, 100 * valueOf(index, u"indexed"_s).value_or(0) / std::max<qint64>(*total, 1)));
}

}
