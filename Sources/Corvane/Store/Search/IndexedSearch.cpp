#include "Store/Search/IndexedSearch.h"

#include "Foundation/Literals.h"
#include "Store/Core/LikePattern.h"
#include "Store/Search/SearchIndex.h"
#include "Store/Search/SearchIndexFile.h"
#include "Store/Search/TextTerms.h"

#include <algorithm>
#include <limits>

namespace corvane {

namespace {

constexpr int mostNames = 400; ///< that are asked for; messages under more of them are found soon by reading on
constexpr qsizetype firstChunk = 64; ///< times that are checked at once; the next chunk is four times as large
constexpr qsizetype mostQuick = 1000; ///< times that are checked before it is better to ask for fewer
constexpr int mostChanged = 20'000; ///< rows that are read one by one
constexpr qint64 longestWriteMs = 60'000; ///< between the time that a row says and its commit

/// The indexed names that match a LIKE pattern.
QStringList names(SqlConnection& index, const QString& column, const QString& pattern)
{
    return index.rows(uR"(SELECT name FROM name WHERE "column"=? AND name LIKE ? ESCAPE '\' LIMIT ?;)"_s,
        { column, pattern, mostNames + 1 }, [](const SqlRow& row) { return row.text(0); });
}

/// What documents must meet to be looked at.
class Expression {
public:
    void words(const TextTerms& terms)
    {
        m_words = terms;
        m_cannotBeMet = m_cannotBeMet || terms.nowhere;
    }

    void all(const QString& part) { m_parts.append(part); }

    void any(const QStringList& marks)
    {
        m_cannotBeMet = m_cannotBeMet || marks.isEmpty();
        if (marks.size() <= mostNames)
            m_parts.append(u'(' + marks.join(u" OR "_s) + u')');
    }

    bool cannotBeMet() const { return m_cannotBeMet; }
    bool isEmpty() const { return m_words.quick.isEmpty() && m_parts.isEmpty(); } ///< it would be met by too many

    // For FTS5; the second one is met by fewer, and slower.
    QString quick() const { return joined(m_words.quick); }
    QString narrow() const { return joined(m_words.narrow); }

private:
    QString joined(const QString& words) const
    {
        return (words.isEmpty() ? m_parts : QStringList(words) + m_parts).join(u" AND "_s);
    }

    TextTerms m_words;
    QStringList m_parts;
    bool m_cannotBeMet = false;
};

QStringList marks(const QString& column, const QStringList& names)
{
    QStringList marks;
    for (const QString& name : names)
        marks.append(u"%1 : \"%2\""_s.arg(column, indexMark(name)));
    return marks;
}

Expression expressionOf(SqlConnection& database, SqlConnection& index, const SearchQuery& query)
{
    constexpr int most = mostNames + 1;
    const auto conversation = u"conversation"_s;
    const auto sender = u"sender"_s;
    const auto media = u"media"_s;
    Expression expression;
    expression.words(termsOf(index, query.text));
    for (const QString& name : query.from)
        expression.any(marks(sender, names(index, sender, containing(name)))
            + marks(conversation, conversationsWith(database, name, most)));
    for (const QString& channel : query.channels)
        expression.any(marks(conversation, conversationsOn(database, channel, most)));
    for (const QString& place : query.places)
        expression.any(marks(conversation, conversationsNamed(database, place, most)));
    for (const MessageContent content : query.has) {
        if (content == MessageContent::Link)
            expression.all(uR"(("http://" OR "https://"))"_s);
        else
            expression.any(marks(media, names(index, media, mediaPattern(content))));
    }
    return expression;
}

/// The times of at least the newest `limit` hits among the documents that match the expression.
QList<qint64> timesByIndex(
    SqlConnection& database, SqlConnection& index, const SearchQuery& query, const Expression& expression, int limit)
{
    QList<qint64> found;
    QList<qint64> unchecked;
    qsizetype checked = 0;
    qsizetype chunk = firstChunk;
    std::optional<qint64> last;
    qint64 end = documentNumberAt(query.beforeMs.value_or(lastNumberedTime + 1));
    const auto check = [&] {
        checked += unchecked.size();
        for (const MessageHit& hit : searchMessagesAt(database, query, std::exchange(unchecked, {}), limit))
            found.append(hit.ts);
        chunk *= 4;
    };
    const auto walk = [&](const QString& match, qsizetype most) {
        index.visitRows("SELECT rowid FROM text WHERE text MATCH ? AND rowid >= ? AND rowid < ? ORDER BY rowid DESC;",
            { match, documentNumberAt(query.afterMs.value_or(0)), end }, [&](const SqlRow& row) {
                end = row.integer(0);
                const qint64 ts = end >> documentSlotBits;
                if (std::exchange(last, ts) == ts)
                    return true;
                if (unchecked.size() >= chunk)
                    check();
                unchecked.append(ts);
                return found.size() < limit && checked < most;
            });
        check();
    };
    const bool hasNarrow = expression.narrow() != expression.quick();
    walk(expression.quick(), hasNarrow ? mostQuick : std::numeric_limits<qsizetype>::max());
    if (hasNarrow && found.size() < limit && checked >= mostQuick)
        walk(expression.narrow(), std::numeric_limits<qsizetype>::max());
    return found;
}

/// The percentage of messages that the index covers while it is being built, else nothing.
std::optional<int> percentBuilt(SqlConnection& index)
{
    const auto total = indexValue(index, u"total"_s);
    if (!total || indexValue(index, u"complete"_s).value_or(0) != 0)
        return std::nullopt;
    return int(std::min<qint64>(99, 100 * indexValue(index, u"indexed"_s).value_or(0) / std::max<qint64>(*total, 1)));
}

/// Nothing if it is not known, or if reading every message is better.
std::optional<MessageChanges::Rows> changedSinceSweep(SqlConnection& database, SqlConnection& index)
{
    const auto swept = indexValue(index, u"swept"_s);
    if (!swept)
        return std::nullopt;
    const auto rowids = [&](const char* table) {
        const QList<qint64> rows
            = database.rows(u"SELECT rowid FROM %1 WHERE updated_at >= ? LIMIT ?;"_s.arg(QLatin1StringView(table)),
                { *swept - longestWriteMs, mostChanged + 1 }, [](const SqlRow& row) { return row.integer(0); });
        return QSet<qint64>(rows.begin(), rows.end());
    };
    const MessageChanges::Rows changed { rowids("unified_message"), rowids("audio_transcript") };
    if (database.failure() != 0 || std::max(changed.messages.size(), changed.transcripts.size()) > mostChanged)
        return std::nullopt;
    return changed;
}

/// Whether the index contains every message up to `newest`, a rowid of the database.
bool isComplete(SqlConnection& database, SqlConnection& index, qint64 newest)
{
    return indexValue(index, u"complete"_s).value_or(0) != 0
        && (newest == 0 || indexProbe(database, newest) == indexValue(index, u"probe"_s));
}

}

std::optional<QList<MessageHit>> searchByIndex(SqlConnection& database, SqlConnection& index, const SearchQuery& query,
    int limit, const MessageChanges::Rows& changed)
{
    if (!index.isOpen() || !database.isOpen())
        return std::nullopt;
    const auto run = [&index](const QString& sql) {
        index.visitRows(sql, {}, [](const SqlRow&) { return false; });
    };
    run(u"BEGIN;"_s); // one snapshot for the index's state and its results
    const qint64 newest = indexValue(index, u"rowid"_s).value_or(0);
    const bool complete = isComplete(database, index, newest);
    const Expression expression = complete ? expressionOf(database, index, query) : Expression();
    const bool answers = complete && (expression.cannotBeMet() || !expression.isEmpty());
    QList<qint64> times;
    if (answers) {
        times = timesOfMatches(database, query, { newest, changed.messages.values(), changed.transcripts.values() });
        const QList<qint64> crowded
            = index.rows("SELECT ts FROM crowded;", {}, [](const SqlRow& row) { return row.integer(0); });
        for (const MessageHit& hit : searchMessagesAt(database, query, crowded, limit))
            times.append(hit.ts);
        if (!expression.cannotBeMet())
            times += timesByIndex(database, index, query, expression, limit);
    }
    run(u"COMMIT;"_s);
    if (!answers || index.failure() != 0)
        return std::nullopt;
    std::ranges::sort(times, std::greater());
    const auto rest = std::ranges::unique(times);
    times.erase(rest.begin(), rest.end());
    times.resize(std::min<qsizetype>(times.size(), std::max(limit, 0)));
    return searchMessagesAt(database, query, times, limit);
}

FoundMessages findMessages(SqlConnection& database, const SearchQuery& query, int limit,
    const std::optional<MessageChanges::Rows>& changed, const std::shared_ptr<const std::atomic<bool>>& stopped)
{
    FoundMessages found;
    const auto index = SqlConnection::reader(SearchIndex::pathBeside(database.path()), stopped);
    if (const auto known = changed ? changed : changedSinceSweep(database, *index)) {
        if (const auto hits = searchByIndex(database, *index, query, limit, *known)) {
            found.hits = *hits;
            return found;
        }
    }
    found.indexPercent = percentBuilt(*index);
    found.hits = searchMessages(database, query, limit);
    found.failed = database.failure() != 0;
    return found;
}

}
