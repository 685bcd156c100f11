#include "Store/Messages/InboxQueries.h"

#include "Store/Core/Workspaces.h"

#include <QSet>

namespace corvane {

namespace {

const QString contactColumns = QStringLiteral(R"(SELECT ct.id, COALESCE(ct.display_name,''),
  (SELECT group_concat(DISTINCT c2.channel) FROM unified_conversation c2
     WHERE c2.contact_id=ct.id AND c2.deleted_at IS NULL),
  COALESCE((SELECT m.body FROM unified_message m
     JOIN unified_conversation cc ON m.conversation_id=cc.id
     WHERE cc.contact_id=ct.id AND m.deleted_at IS NULL ORDER BY m.ts DESC LIMIT 1), ''),
  MAX(c.last_ts), SUM(c.unread),
  MIN(c.account_id),
  MAX(CASE WHEN c.external_id LIKE '%@g.us' THEN 1 ELSE 0 END),
  COALESCE(ct.avatar_path,''),
  MAX(c.muted)
FROM contact ct JOIN unified_conversation c ON c.contact_id=ct.id
WHERE ct.workspace_id=? AND ct.deleted_at IS NULL AND c.deleted_at IS NULL
  AND )");

QString archivedCondition(InboxFilter filter)
{
    return filter == InboxFilter::Archived ? QStringLiteral("archived_at IS NOT NULL")
                                           : QStringLiteral("archived_at IS NULL");
}

/// The conversations under the filter, newest first. The cross join holds the order of the loops, and whoever has
/// nothing unread at all is passed over without a sum.
QString newestStatement(InboxFilter filter, qint64 nowMs)
{
    QString sql = QStringLiteral(R"(SELECT c.contact_id, c.last_ts
FROM unified_conversation c CROSS JOIN contact ct ON ct.id=c.contact_id
WHERE c.deleted_at IS NULL AND c.%1 AND ct.workspace_id=? AND ct.deleted_at IS NULL AND (? = '' OR c.account_id = ?))");
    if (filter == InboxFilter::NeedsMe) {
        sql += QStringLiteral(R"(
  AND c.contact_id IN (SELECT contact_id FROM unified_conversation WHERE deleted_at IS NULL AND %1 AND unread > 0)
  AND (SELECT SUM(u.unread) FROM unified_conversation u WHERE u.contact_id=c.contact_id AND u.deleted_at IS NULL
     AND u.%1 AND (? = '' OR u.account_id = ?)) > 0)");
    } else if (filter == InboxFilter::Today) {
        sql += QStringLiteral("\n  AND c.last_ts >= %2").arg(startOfTodayMs(nowMs));
    }
    return sql.replace(QStringLiteral("%1"), archivedCondition(filter)) + QStringLiteral("\nORDER BY c.last_ts DESC;");
}

/// The newest people under the filter: `limit`, and who else is as old as the last of them.
QStringList newestPeople(LocalDB& db, InboxFilter filter, const QString& workspace, const QString& account, int limit)
{
    QList<SqlValue> parameters { workspace, account, account };
    if (filter == InboxFilter::NeedsMe)
        parameters += { account, account };
    QSet<QString> known;
    qint64 lastTs = 0;
    db.visitRows(newestStatement(filter, db.nowMs()), parameters, [&](const SqlRow& row) {
        if (known.size() >= limit && row.integer(1) != lastTs)
            return false;
        const QString id = row.text(0);
        if (!known.contains(id)) {
            known.insert(id);
            lastTs = row.integer(1);
        }
        return true;
    });
    return known.values();
}

/// Of the people alone who are named in a JSON array.
QString contactsStatement(InboxFilter filter, qint64 nowMs)
{
    QString sql = contactColumns + QStringLiteral("(? = '' OR c.account_id = ?) AND c.") + archivedCondition(filter)
        + QStringLiteral(" AND ct.id IN (SELECT value FROM json_each(?))\nGROUP BY ct.id ");
    if (filter == InboxFilter::NeedsMe)
        sql += QStringLiteral("HAVING SUM(c.unread) > 0");
    else if (filter == InboxFilter::Today)
        sql += QStringLiteral("HAVING MAX(c.last_ts) >= %1").arg(startOfTodayMs(nowMs));
    return sql + QStringLiteral("\nORDER BY MAX(c.last_ts) DESC, ct.id LIMIT ?;");
}

ContactRow contactRow(const SqlRow& row)
{
    return ContactRow {
        .id = row.text(0),
        .name = row.text(1),
        .platforms = row.text(2).split(u',', Qt::SkipEmptyParts),
        .snippet = row.text(3),
        .lastTs = row.integer(4),
        .unread = static_cast<int>(row.integer(5)),
        .account = row.text(6),
        .isGroup = row.integer(7) != 0,
        .avatarPath = row.text(8),
        .isMuted = row.integer(9) != 0,
    };
}

}

QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QString& account, int limit)
{
    const QString workspace = activeWorkspaceId(db);
    const QStringList people = newestPeople(db, filter, workspace, account, limit);
    return db.rows(
        contactsStatement(filter, db.nowMs()), { workspace, account, account, jsonString(people), limit }, contactRow);
}

QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QStringList& contactIds)
{
    return db.rows(contactsStatement(filter, db.nowMs()),
        { activeWorkspaceId(db), QString(), QString(), jsonString(contactIds), contactIds.size() }, contactRow);
}

std::optional<ContactRow> fetchContact(LocalDB& db, const QString& contactId)
{
    return db.firstRow(
        contactColumns + QStringLiteral("ct.id=?\nGROUP BY ct.id;"), { activeWorkspaceId(db), contactId }, contactRow);
}

InboxCounts fetchInboxCounts(LocalDB& db)
{
    const QString workspace = activeWorkspaceId(db);
    // The cross join holds the order of the loops: few conversations match, and every person would be walked.
    const auto people = [&](const QString& condition) {
        return db
            .scalar(QStringLiteral(R"(SELECT COUNT(DISTINCT ct.id)
FROM unified_conversation c CROSS JOIN contact ct ON ct.id=c.contact_id
WHERE c.workspace_id=? AND c.deleted_at IS NULL AND c.archived_at IS NULL AND %1
  AND ct.workspace_id=? AND ct.deleted_at IS NULL;)")
                        .arg(condition),
                { workspace, workspace })
            .value_or(QString())
            .toInt();
    };
    const QString today = QStringLiteral("c.last_ts >= %1").arg(startOfTodayMs(db.nowMs()));
    return { people(QStringLiteral("c.unread > 0")), people(today) };
}

QString newestMediaType(LocalDB& db, const QString& contactId)
{
    return db
        .scalar(R"(SELECT m.media_type FROM unified_message m
JOIN unified_conversation cc ON m.conversation_id=cc.id
WHERE cc.contact_id=? AND m.deleted_at IS NULL ORDER BY m.ts DESC LIMIT 1;)",
            { contactId })
        .value_or(QString());
}

QList<MessageHit> searchMessages(SqlConnection& db, const QString& query, int limit)
{
    const QString pattern = u'%' + query + u'%';
    return db.rows(R"(SELECT m.id, cc.contact_id, COALESCE(ct.display_name, cc.contact_id), cc.channel,
       COALESCE(NULLIF(m.body,''), at.transcript, ''), m.ts, m.direction
FROM unified_message m
JOIN unified_conversation cc ON m.conversation_id=cc.id
LEFT JOIN contact ct ON ct.id=cc.contact_id
LEFT JOIN audio_transcript at ON at.message_id=m.id
WHERE m.deleted_at IS NULL AND cc.deleted_at IS NULL
  AND (m.body LIKE ? OR at.transcript LIKE ?)
  AND COALESCE(NULLIF(m.body,''), at.transcript, '') != ''
ORDER BY m.ts DESC LIMIT ?;)",
        { pattern, pattern, limit }, [](const SqlRow& row) {
            return MessageHit { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.integer(5),
                row.text(6) };
        });
}

int totalUnread(LocalDB& db)
{
    const auto total = db.scalar("SELECT COALESCE(SUM(unread),0) FROM unified_conversation WHERE workspace_id=? AND "
                                 "deleted_at IS NULL AND archived_at IS NULL;",
        { activeWorkspaceId(db) });
    return total.value_or(QString()).toInt();
}

void markRead(LocalDB& db, const QString& contactId)
{
    db.run("UPDATE unified_conversation SET unread=0, updated_at=? WHERE contact_id=?;", { db.nowMs(), contactId });
}

void markAllRead(LocalDB& db)
{
    const QString workspace = activeWorkspaceId(db);
    db.run("UPDATE unified_conversation SET unread=0, updated_at=? WHERE workspace_id=? AND deleted_at IS NULL AND "
           "archived_at IS NULL AND unread>0;",
        { db.nowMs(), workspace });
}

void archiveContact(LocalDB& db, const QString& contactId)
{
    const qint64 now = db.nowMs();
    db.run("UPDATE unified_conversation SET archived_at=?, updated_at=? WHERE contact_id=?;", { now, now, contactId });
}

void unarchiveContact(LocalDB& db, const QString& contactId)
{
    db.run("UPDATE unified_conversation SET archived_at=NULL, updated_at=? WHERE contact_id=?;",
        { db.nowMs(), contactId });
}

void setMuted(LocalDB& db, const QString& contactId, bool muted)
{
    db.run("UPDATE unified_conversation SET muted=?, updated_at=? WHERE contact_id=?;",
        { muted ? 1 : 0, db.nowMs(), contactId });
}

bool isMuted(LocalDB& db, const QString& contactId)
{
    return db.scalar("SELECT MAX(muted) FROM unified_conversation WHERE contact_id=?;", { contactId })
               .value_or(QString())
               .toInt()
        != 0;
}

std::optional<ReplyTarget> replyTarget(LocalDB& db, const QString& contactId, const QString& platform)
{
    return db.firstRow(R"(SELECT account_id, external_id FROM unified_conversation
WHERE contact_id=? AND channel=? AND deleted_at IS NULL ORDER BY last_ts DESC LIMIT 1;)",
        { contactId, platform }, [](const SqlRow& row) { return ReplyTarget { row.text(0), row.text(1) }; });
}

std::optional<QString> newestConversation(LocalDB& db, const QString& contactId)
{
    return db.scalar("SELECT id FROM unified_conversation WHERE contact_id=? AND deleted_at IS NULL ORDER BY last_ts "
                     "DESC LIMIT 1;",
        { contactId });
}

QString contactOfMessage(LocalDB& db, const QString& providerMsgId)
{
    return db
        .scalar(R"(SELECT cc.contact_id FROM unified_message m
JOIN unified_conversation cc ON cc.id=m.conversation_id WHERE m.provider_msg_id=? LIMIT 1;)",
            { providerMsgId })
        .value_or(QString());
}

void setReaction(LocalDB& db, const QString& messageId, const QString& emoji)
{
    db.run("UPDATE unified_message SET reaction=?, updated_at=? WHERE id=?;", { emoji, db.nowMs(), messageId });
}

}
