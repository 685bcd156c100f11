#include "Store/Search/SearchQueries.h"

#include "Foundation/Literals.h"
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
        { "ct.avatar_path", &MessageHit::avatarPath, "''" },
    });

const QString matching = uR"(JOIN unified_conversation cc ON m.conversation_id=cc.id
LEFT JOIN contact ct ON ct.id=cc.contact_id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE m.deleted_at IS NULL AND cc.deleted_at IS NULL
  AND (m.body LIKE ? OR at.transcript LIKE ? OR m.subject LIKE ?)
  AND COALESCE(NULLIF(m.body,''), at.transcript, m.subject, '') != '')"_s;

QString pattern(const QString& query)
{
    return u'%' + query + u'%';
}

}

QList<MessageHit> searchMessages(SqlConnection& db, const QString& query, int limit)
{
    const QString words = pattern(query);
    return hits.rows(db, matching + u"\nORDER BY m.ts DESC LIMIT ?;"_s, { words, words, words, limit });
}

// The plus keeps SQLite from walking all times in order; the rowid is what decides among equal times above.
QList<MessageHit> searchMessagesAt(SqlConnection& db, const QString& query, const QList<qint64>& times, int limit)
{
    const QString words = pattern(query);
    return hits.rows(db,
        matching + u"\n  AND m.ts IN (SELECT value FROM json_each(?))\nORDER BY +m.ts DESC, m.rowid DESC LIMIT ?;"_s,
        { words, words, words, jsonNumbers(times), limit });
}

QList<qint64> timesOfMatches(SqlConnection& db, const QString& query, const MessageRange& range)
{
    const QString words = pattern(query);
    const auto times = [&](const QString& condition, const SqlValue& value) {
        return db.rows(u"SELECT m.ts FROM unified_message m\n"_s + matching + u"\n  AND "_s + condition + u';',
            { words, words, words, value }, [](const SqlRow& row) { return row.integer(0); });
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

QString jsonNumbers(const QList<qint64>& values)
{
    QString json = u"["_s;
    for (const qint64 value : values)
        json += (json.size() > 1 ? u","_s : QString()) + QString::number(value);
    return json + u']';
}

}
