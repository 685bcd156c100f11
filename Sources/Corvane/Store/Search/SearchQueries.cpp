#include "Store/Search/SearchQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/LikePattern.h"
#include "Store/Core/Table.h"

namespace corvane {

namespace {

const Table<MessageHit> hits("unified_message m",
    {
        { "m.id", &MessageHit::id },
        { "cc.contact_id", &MessageHit::contactId },
        { "COALESCE(ct.display_name, cc.contact_id)", &MessageHit::contactName },
        { "cc.channel", &MessageHit::channel },
        { "COALESCE(NULLIF(m.subject,'') || ': ', '') || COALESCE(NULLIF(m.body,''), at.transcript, '')",
            &MessageHit::snippet },
        { "m.ts", &MessageHit::ts },
        { "m.direction", &MessageHit::direction },
        { "m.media_type", &MessageHit::mediaType, "''" },
        { "ct.avatar_path", &MessageHit::avatarPath, "''" },
    });

const QString joins = uR"(JOIN unified_conversation cc ON m.conversation_id=cc.id
LEFT JOIN contact ct ON ct.id=cc.contact_id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE m.deleted_at IS NULL AND cc.deleted_at IS NULL)"_s;

const QString holdingWords = uR"(
  AND (m.body LIKE ? OR at.transcript LIKE ? OR m.subject LIKE ?)
  AND COALESCE(NULLIF(m.body,''), at.transcript, m.subject, '') != '')"_s;

const QString inPlace = uR"((ct.display_name LIKE ? ESCAPE '\' OR cc.title LIKE ? ESCAPE '\'))"_s;

const QString namedConversations = uR"(SELECT id FROM unified_conversation WHERE title LIKE ? ESCAPE '\'
UNION SELECT cc.id FROM contact ct CROSS JOIN unified_conversation cc ON cc.contact_id=ct.id
  WHERE ct.display_name LIKE ? ESCAPE '\')"_s;

QString holding(MessageContent content)
{
    if (content == MessageContent::Link)
        return u"(m.body LIKE '%http://%' OR m.body LIKE '%https://%')"_s;
    if (content == MessageContent::File)
        return u"COALESCE(NULLIF(m.media_type,''), m.media_path, '') != ''"_s;
    return u"m.media_type LIKE '%1'"_s.arg(mediaPattern(content));
}

struct Condition {
    QString sql; ///< including the joins
    QList<SqlValue> values;

    void also(const QString& more, const QList<SqlValue>& given = {})
    {
        sql += u"\n  AND "_s + more;
        values += given;
    }
};

Condition conditionOf(const SearchQuery& query)
{
    Condition condition { joins, {} };
    if (!query.text.isEmpty() || !query.isNarrowed()) {
        const QString words = u'%' + query.text + u'%';
        condition.sql += holdingWords;
        condition.values = { words, words, words };
    }
    if (query.fromMe)
        condition.also(u"m.direction='OUT'"_s);
    // Messages in a group name their sender; otherwise it is the person of the conversation.
    for (const QString& name : query.from)
        condition.also(uR"(m.direction='IN' AND (m.sender LIKE ? ESCAPE '\'
    OR (cc.external_id NOT LIKE '%@g.us' AND ct.display_name LIKE ? ESCAPE '\')))"_s,
            { containing(name), containing(name) });
    for (const QString& channel : query.channels)
        condition.also(u"cc.channel=?"_s, { SqlValue(channel) });
    for (const QString& place : query.places)
        condition.also(inPlace, { containing(place), containing(place) });
    for (const MessageContent content : query.has)
        condition.also(holding(content));
    if (query.afterMs)
        condition.also(u"m.ts >= ?"_s, { SqlValue(*query.afterMs) });
    if (query.beforeMs)
        condition.also(u"m.ts < ?"_s, { SqlValue(*query.beforeMs) });
    return condition;
}

QStringList ids(SqlConnection& db, const QString& sql, const QList<SqlValue>& values)
{
    return db.rows(sql, values, [](const SqlRow& row) { return row.text(0); });
}

}

// Walks the index by time, newest first; the messages of a few conversations are sorted instead.
QList<MessageHit> searchMessages(SqlConnection& db, const SearchQuery& query, int limit)
{
    Condition condition = conditionOf(query);
    for (const QString& place : query.places)
        condition.also(
            u"m.conversation_id IN ("_s + namedConversations + u')', { containing(place), containing(place) });
    condition.sql += query.places.isEmpty() ? u"\nORDER BY m.ts DESC LIMIT ?;"_s
                                            : u"\nORDER BY +m.ts DESC, m.rowid DESC LIMIT ?;"_s;
    return hits.rows(db, condition.sql, condition.values << limit);
}

// The unary plus keeps SQLite from walking all times in order; ties are broken by rowid, as above.
QList<MessageHit> searchMessagesAt(SqlConnection& db, const SearchQuery& query, const QList<qint64>& times, int limit)
{
    Condition condition = conditionOf(query);
    condition.also(u"m.ts IN (SELECT value FROM json_each(?))"_s, { SqlValue(jsonNumbers(times)) });
    return hits.rows(db, condition.sql + u"\nORDER BY +m.ts DESC, m.rowid DESC LIMIT ?;"_s, condition.values << limit);
}

QList<qint64> timesOfMatches(SqlConnection& db, const SearchQuery& query, const MessageRange& range)
{
    const auto times = [&](const QString& of, const SqlValue& value) {
        Condition condition = conditionOf(query);
        condition.also(of, QList<SqlValue>() << value);
        return db.rows(u"SELECT m.ts FROM unified_message m\n"_s + condition.sql + u';', condition.values,
            [](const SqlRow& row) { return row.integer(0); });
    };
    QList<qint64> found = times(u"m.rowid > ?"_s, range.after);
    if (!range.messages.isEmpty())
        found += times(u"m.rowid IN (SELECT value FROM json_each(?))"_s, jsonNumbers(range.messages));
    if (!range.transcripts.isEmpty())
        found += times(u"m.id IN (SELECT message_id FROM audio_transcript WHERE rowid IN (SELECT value FROM "
                       "json_each(?)))"_s,
            jsonNumbers(range.transcripts));
    return found;
}

QStringList conversationsOn(SqlConnection& db, const QString& channel, int limit)
{
    return ids(db, u"SELECT id FROM unified_conversation WHERE channel=? LIMIT ?;"_s, { channel, limit });
}

QStringList conversationsNamed(SqlConnection& db, const QString& name, int limit)
{
    return ids(db, namedConversations + u" LIMIT ?;"_s, { containing(name), containing(name), limit });
}

QStringList conversationsWith(SqlConnection& db, const QString& name, int limit)
{
    return ids(db, uR"(SELECT cc.id FROM contact ct CROSS JOIN unified_conversation cc ON cc.contact_id=ct.id
WHERE ct.display_name LIKE ? ESCAPE '\' AND cc.external_id NOT LIKE '%@g.us' LIMIT ?;)"_s,
        { containing(name), limit });
}

QString mediaPattern(MessageContent file)
{
    switch (file) {
    case MessageContent::Image:
        return u"image"_s;
    case MessageContent::Video:
        return u"video"_s;
    case MessageContent::Audio:
        return u"audio"_s;
    case MessageContent::Document:
        return u"document"_s;
    case MessageContent::File:
    case MessageContent::Link:
        break;
    }
    return u"%"_s;
}

QString jsonNumbers(const QList<qint64>& values)
{
    QString json = u"["_s;
    for (const qint64 value : values)
        json += (json.size() > 1 ? u","_s : QString()) + QString::number(value);
    return json + u']';
}

}
