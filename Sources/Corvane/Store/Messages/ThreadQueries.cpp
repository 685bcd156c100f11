#include "Store/Messages/ThreadQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"

#include <algorithm>

namespace corvane {

namespace {

const Table<UnifiedMsgRow> messages("unified_message m",
    {
        { "m.id", &UnifiedMsgRow::id },
        { "m.direction", &UnifiedMsgRow::direction },
        { "m.body", &UnifiedMsgRow::body, "''" },
        { "cc.channel", &UnifiedMsgRow::platform },
        { "cc.account_id", &UnifiedMsgRow::accountId },
        { "cc.external_id", &UnifiedMsgRow::externalId },
        { "m.provider_msg_id", &UnifiedMsgRow::providerMsgId, "''" },
        { "m.ts", &UnifiedMsgRow::ts },
        { "m.media_type", &UnifiedMsgRow::mediaType },
        { "m.media_path", &UnifiedMsgRow::mediaPath },
        { "m.sender", &UnifiedMsgRow::sender, "''" },
        { "m.status", &UnifiedMsgRow::status, "0" },
        { "m.reaction", &UnifiedMsgRow::reaction, "''" },
        { "at.transcript", &UnifiedMsgRow::audioTranscript },
        { "m.subject", &UnifiedMsgRow::subject, "''" },
    });

// Each conversation contributes at most one page, found in the index only, so that the cost of a page does not depend
// on its position or the length of the thread. The unary plus keeps SQLite from walking whole conversations.
const QString page = uR"(JOIN unified_conversation cc ON +m.conversation_id=cc.id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE cc.contact_id=? AND +m.deleted_at IS NULL AND m.rowid IN (
  SELECT p.rowid FROM unified_message p WHERE p.conversation_id=cc.id AND p.deleted_at IS NULL
    AND (p.ts, p.rowid) %1 (?, COALESCE((SELECT rowid FROM unified_message WHERE id=?), 0))
  ORDER BY p.ts %2, p.rowid %2 LIMIT ?)
ORDER BY m.ts %2, m.rowid %2 LIMIT ?;)"_s;

}

QList<UnifiedMsgRow> fetchThreadPage(
    LocalDB& db, const QString& contactId, Towards towards, const ThreadPlace& from, int limit)
{
    const bool older = towards == Towards::Older;
    const QString which = older ? page.arg(u"<", u"DESC") : page.arg(u">", u"ASC");
    QList<UnifiedMsgRow> found
        = messages.rows(db, which, { effectiveContactId(db, contactId), from.ts, from.messageId, limit, limit });
    if (older)
        std::ranges::reverse(found);
    return found;
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
