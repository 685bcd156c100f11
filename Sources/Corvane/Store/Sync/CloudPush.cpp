#include "Store/Sync/CloudPush.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"

namespace corvane {

namespace {

const Table<CloudThread> threads("unified_conversation c",
    {
        { "c.id", &CloudThread::conversationId },
        { "c.account_id", &CloudThread::accountId },
        { "c.external_id", &CloudThread::externalId },
        { "c.title", &CloudThread::title, "''" },
        { "c.last_ts", &CloudThread::lastTs },
        { "c.unread", &CloudThread::unread },
        { "CASE WHEN c.archived_at IS NULL THEN 0 ELSE 1 END", &CloudThread::archived, asStored, onlyRead },
        { "c.muted", &CloudThread::muted, "0" },
        { "cur.cloud_chat_id", &CloudThread::cloudChatId, asStored, onlyRead },
    });

const Table<CloudMessage> messages("unified_message m",
    {
        { "m.id", &CloudMessage::id },
        { "m.provider_msg_id", &CloudMessage::providerMsgId, "''" },
        { "m.direction", &CloudMessage::direction },
        { "m.body", &CloudMessage::body, "''" },
        { "m.sender", &CloudMessage::sender },
        { "m.ts", &CloudMessage::ts },
        { "m.attachments", &CloudMessage::attachmentsJson, "''" },
        { "m.reaction", &CloudMessage::reaction, "''" },
        { "m.media_type", &CloudMessage::mediaType, "''" },
    });

const Table<LeftOutRange> leftOut("cloud_left_out l",
    {
        { "l.conversation_id", &LeftOutRange::conversationId },
        { "l.from_ms", &LeftOutRange::fromMs },
        { "l.from_id", &LeftOutRange::fromId },
        { "l.to_ms", &LeftOutRange::toMs },
    });

const Table<KeptLocal> kept("cloud_keep_local k",
    {
        { "k.conversation_id", &KeptLocal::conversationId },
        { "COALESCE(c.account_id, k.account_id)", &KeptLocal::accountId, asStored, onlyRead },
        { "NULLIF(c.title,'')", &KeptLocal::title, "c.external_id", onlyRead },
    });

const QString joinCursor = u"LEFT JOIN cloud_sync_cursor cur ON cur.conversation_id = c.id\n"_s;
const QString notKeptLocal = uR"(
  AND c.id NOT IN (SELECT conversation_id FROM cloud_keep_local WHERE conversation_id<>'')
  AND c.account_id NOT IN (SELECT account_id FROM cloud_keep_local WHERE account_id<>'')
)"_s;
const QString isDue = uR"(WHERE c.workspace_id=? AND c.channel='WHATSAPP' AND c.deleted_at IS NULL
  AND c.last_ts > COALESCE(cur.last_synced_ms, 0))"_s
    + notKeptLocal;

// Only the bounds by time can use the thread's index.
const QString isLeftOut = uR"( m.deleted_at IS NULL AND m.ts>=l.from_ms AND m.ts<=l.to_ms
  AND (m.ts>l.from_ms OR m.id>l.from_id))"_s;

DueThread dueThread(SqlConnection& db, const CloudThread& thread)
{
    DueThread due { thread };
    db.visitRows(uR"(SELECT COUNT(*), COALESCE(MIN(ts),0) FROM unified_message
WHERE conversation_id=? AND deleted_at IS NULL AND ts>?;)"_s,
        { thread.conversationId, cloudCursor(db, thread.conversationId).lastSyncedMs }, [&](const SqlRow& row) {
            due.messages = row.integer(0);
            due.oldestMs = row.integer(1);
            return false;
        });
    return due;
}

}

QList<CloudThread> cloudThreadsToSync(SqlConnection& db, const QString& workspaceId, int limit)
{
    return threads.rows(db, joinCursor + isDue + u"ORDER BY c.last_ts DESC LIMIT ?;"_s, { workspaceId, limit });
}

QList<CloudMessage> cloudMessagesToSync(SqlConnection& db, const QString& conversationId, qint64 sinceMs, int limit)
{
    return messages.rows(db,
        u"WHERE m.conversation_id=? AND m.deleted_at IS NULL AND m.ts>? ORDER BY m.ts, m.id LIMIT ?;"_s,
        { conversationId, sinceMs, limit });
}

QList<CloudMessage> cloudMessagesLeftOut(SqlConnection& db, const LeftOutRange& range, int limit)
{
    return messages.rows(db,
        u"JOIN (SELECT ? AS from_ms, ? AS from_id, ? AS to_ms) l\nWHERE m.conversation_id=? AND"_s + isLeftOut
            + u" ORDER BY m.ts, m.id LIMIT ?;"_s,
        { range.fromMs, range.fromId, range.toMs, range.conversationId, limit });
}

CloudCursor cloudCursor(SqlConnection& db, const QString& conversationId)
{
    return db
        .firstRow(u"SELECT last_synced_ms, cloud_chat_id FROM cloud_sync_cursor WHERE conversation_id=?;"_s,
            { conversationId }, [](const SqlRow& row) { return CloudCursor { row.integer(0), row.optionalText(1) }; })
        .value_or(CloudCursor {});
}

PushReview fetchPushReview(SqlConnection& db, const QString& workspaceId, int limit)
{
    PushReview review;
    for (const CloudThread& thread : cloudThreadsToSync(db, workspaceId, limit))
        review.threads.append(dueThread(db, thread));
    const auto count = [&](const QString& sql, auto take) {
        db.visitRows(sql, { workspaceId }, [&](const SqlRow& row) {
            take(row);
            return false;
        });
    };
    count(u"SELECT COUNT(*) FROM unified_conversation c\n"_s + joinCursor + isDue,
        [&](const SqlRow& row) { review.waitingThreads = row.integer(0) - review.threads.size(); });
    count(u"SELECT COUNT(DISTINCT c.id), COUNT(*) FROM cloud_left_out l\n"
          "JOIN unified_conversation c ON c.id=l.conversation_id AND c.deleted_at IS NULL\n"
          "JOIN unified_message m ON m.conversation_id=c.id AND"_s
            + isLeftOut + u"\nWHERE c.workspace_id=?"_s + notKeptLocal,
        [&](const SqlRow& row) {
            review.leftOutThreads = row.integer(0);
            review.leftOutMessages = row.integer(1);
        });
    return review;
}

std::optional<CloudThread> cloudThread(SqlConnection& db, const QString& conversationId)
{
    return threads.first(
        db, joinCursor + u"WHERE c.id=? AND c.deleted_at IS NULL"_s + notKeptLocal, { conversationId });
}

QList<LeftOutRange> fetchLeftOut(SqlConnection& db, const QString& workspaceId)
{
    return leftOut.rows(db,
        u"JOIN unified_conversation c ON c.id=l.conversation_id AND c.deleted_at IS NULL\nWHERE c.workspace_id=?"_s
            + notKeptLocal + u"ORDER BY c.last_ts DESC, l.from_ms, l.from_id;"_s,
        { workspaceId });
}

void storeCloudCursor(LocalDB& db, const QString& conversationId, const QString& cloudChatId, qint64 lastSyncedMs,
    const std::optional<QString>& lastMessageId)
{
    db.run(R"(INSERT INTO cloud_sync_cursor(conversation_id, cloud_chat_id, last_synced_ms, last_message_id, synced_at)
VALUES(?,?,?,?,?)
ON CONFLICT(conversation_id) DO UPDATE SET
  cloud_chat_id=COALESCE(excluded.cloud_chat_id, cloud_sync_cursor.cloud_chat_id),
  last_synced_ms=excluded.last_synced_ms,
  last_message_id=excluded.last_message_id,
  synced_at=excluded.synced_at;)",
        { conversationId, cloudChatId, lastSyncedMs, lastMessageId, db.nowMs() });
}

void storeLeftOut(LocalDB& db, const LeftOutRange& range)
{
    leftOut.insert(db, range, {}, " ON CONFLICT DO UPDATE SET to_ms=MAX(to_ms, excluded.to_ms)");
}

void removeLeftOut(LocalDB& db, const LeftOutRange& range)
{
    db.run("DELETE FROM cloud_left_out WHERE conversation_id=? AND from_ms=? AND from_id=?;",
        { range.conversationId, range.fromMs, range.fromId });
}

QStringList fetchCloudAccounts(SqlConnection& db)
{
    return db.rows("SELECT DISTINCT account_id FROM unified_conversation WHERE channel='WHATSAPP';", {},
        [](const SqlRow& row) { return row.text(0); });
}

void forgetCloudCursors(LocalDB& db)
{
    db.run("DELETE FROM cloud_sync_cursor;");
    db.run("DELETE FROM cloud_left_out;");
}

void keepConversationLocal(LocalDB& db, const QString& conversationId)
{
    db.run("INSERT OR IGNORE INTO cloud_keep_local(conversation_id, kept_at) VALUES(?,?);",
        { conversationId, db.nowMs() });
}

void keepAccountLocal(LocalDB& db, const QString& accountId)
{
    db.run("INSERT OR IGNORE INTO cloud_keep_local(account_id, kept_at) VALUES(?,?);", { accountId, db.nowMs() });
}

void stopKeepingLocal(LocalDB& db, const KeptLocal& line)
{
    if (line.conversationId.isEmpty())
        db.run("DELETE FROM cloud_keep_local WHERE conversation_id='' AND account_id=?;", { line.accountId });
    else
        db.run("DELETE FROM cloud_keep_local WHERE conversation_id=?;", { line.conversationId });
}

QList<KeptLocal> fetchKeptLocal(SqlConnection& db)
{
    return kept.rows(db,
        u"LEFT JOIN unified_conversation c ON c.id=k.conversation_id\nORDER BY k.conversation_id<>'', k.kept_at;"_s,
        {});
}

}
