#include "Store/Messages/ThreadQueries.h"

#include <algorithm>

namespace corvane {

namespace {

// Each conversation gives at most a page, found in the index alone, so that a page costs the same wherever it stands
// and however long the thread is. The plus keeps SQLite from walking whole conversations instead.
const char* const pageStatement
    = R"(SELECT m.id, m.direction, COALESCE(m.body,''), cc.channel, cc.account_id, cc.external_id,
       COALESCE(m.provider_msg_id,''), m.ts, m.media_type, m.media_path, COALESCE(m.sender,''),
       COALESCE(m.status,0), COALESCE(m.reaction,''), at.transcript
FROM unified_message m JOIN unified_conversation cc ON +m.conversation_id=cc.id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE cc.contact_id=? AND +m.deleted_at IS NULL AND m.rowid IN (
  SELECT p.rowid FROM unified_message p WHERE p.conversation_id=cc.id AND p.deleted_at IS NULL
    AND (p.ts, p.rowid) %1 (?, COALESCE((SELECT rowid FROM unified_message WHERE id=?), 0))
  ORDER BY p.ts %2, p.rowid %2 LIMIT ?)
ORDER BY m.ts %2, m.rowid %2 LIMIT ?;)";

UnifiedMsgRow messageRow(const SqlRow& row)
{
    return UnifiedMsgRow {
        .id = row.text(0),
        .direction = row.text(1),
        .body = row.text(2),
        .platform = row.text(3),
        .accountId = row.text(4),
        .externalId = row.text(5),
        .providerMsgId = row.text(6),
        .ts = row.integer(7),
        .mediaType = row.optionalText(8),
        .mediaPath = row.optionalText(9),
        .sender = row.text(10),
        .status = static_cast<int>(row.integer(11)),
        .reaction = row.text(12),
        .audioTranscript = row.optionalText(13),
    };
}

}

QList<UnifiedMsgRow> fetchThreadPage(
    LocalDB& db, const QString& contactId, Towards towards, const ThreadPlace& from, int limit)
{
    const bool older = towards == Towards::Older;
    const QString sql = QString::fromLatin1(pageStatement)
                            .arg(older ? QStringLiteral("<") : QStringLiteral(">"),
                                older ? QStringLiteral("DESC") : QStringLiteral("ASC"));
    QList<UnifiedMsgRow> page
        = db.rows(sql, { effectiveContactId(db, contactId), from.ts, from.messageId, limit, limit }, messageRow);
    if (older)
        std::ranges::reverse(page);
    return page;
}

QList<UnifiedMsgRow> fetchUnifiedThread(LocalDB& db, const QString& contactId, int limit)
{
    return fetchThreadPage(db, contactId, Towards::Older, threadEnd, limit);
}

std::optional<ThreadPlace> placeInThread(LocalDB& db, const QString& contactId, const QString& messageId)
{
    return db.firstRow(R"(SELECT m.ts FROM unified_message m JOIN unified_conversation cc ON m.conversation_id=cc.id
WHERE m.id=? AND m.deleted_at IS NULL AND cc.contact_id=?;)",
        { messageId, effectiveContactId(db, contactId) },
        [&](const SqlRow& row) { return ThreadPlace { row.integer(0), messageId }; });
}

void deleteMessageLocal(LocalDB& db, const QString& messageId)
{
    const qint64 now = db.nowMs();
    db.run("UPDATE unified_message SET deleted_at=?, updated_at=? WHERE id=?;", { now, now, messageId });
}

void restoreMessageLocal(LocalDB& db, const QString& messageId)
{
    db.run("UPDATE unified_message SET deleted_at=NULL, updated_at=? WHERE id=?;", { db.nowMs(), messageId });
}

QString effectiveContactId(LocalDB& db, const QString& id)
{
    return db
        .scalar("SELECT primary_contact_id FROM contact_merge WHERE merged_contact_id=? AND undone_at IS NULL LIMIT 1;",
            { id })
        .value_or(id);
}

}
