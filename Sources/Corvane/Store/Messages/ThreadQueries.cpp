#include "Store/Messages/ThreadQueries.h"

namespace corvane {

QList<UnifiedMsgRow> fetchUnifiedThread(LocalDB& db, const QString& contactId, int limit)
{
    return db.rows(R"(SELECT m.id, m.direction, COALESCE(m.body,''), cc.channel, cc.account_id, cc.external_id,
       COALESCE(m.provider_msg_id,''), m.ts, m.media_type, m.media_path, COALESCE(m.sender,''),
       COALESCE(m.status,0), COALESCE(m.reaction,''), at.transcript
FROM unified_message m JOIN unified_conversation cc ON m.conversation_id=cc.id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE cc.contact_id=? AND m.deleted_at IS NULL ORDER BY m.ts ASC LIMIT ?;)",
        { effectiveContactId(db, contactId), limit }, [](const SqlRow& row) {
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
        });
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
