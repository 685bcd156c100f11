#include "Store/Messages/InboxQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"

#include <QSet>

namespace corvane {

namespace {

/// The newest message `m` of a person `%1`. Each conversation contributes its newest one, so that only those are
/// sorted.
const QString newestMessage = uR"(FROM unified_conversation cc JOIN unified_message m ON m.rowid=(
       SELECT n.rowid FROM unified_message n WHERE n.conversation_id=cc.id AND n.deleted_at IS NULL
       ORDER BY n.ts DESC LIMIT 1)
     WHERE cc.contact_id=%1 ORDER BY m.ts DESC LIMIT 1)"_s;

const QByteArray newestBody = u"(SELECT m.body %1)"_s.arg(newestMessage.arg(u"ct.id"_s)).toUtf8();

const Table<ContactRow> contacts("contact ct",
    {
        { "ct.id", &ContactRow::id },
        { "ct.display_name", &ContactRow::name, "''" },
        { R"((SELECT group_concat(DISTINCT c2.channel) FROM unified_conversation c2
     WHERE c2.contact_id=ct.id AND c2.deleted_at IS NULL))",
            &ContactRow::platforms },
        { newestBody.constData(), &ContactRow::snippet, "''" },
        { "MAX(c.last_ts)", &ContactRow::lastTs },
        { "SUM(c.unread)", &ContactRow::unread },
        { "MIN(c.account_id)", &ContactRow::account },
        { "MAX(CASE WHEN c.external_id LIKE '%@g.us' THEN 1 ELSE 0 END)", &ContactRow::isGroup },
        { "ct.avatar_path", &ContactRow::avatarPath, "''" },
        { "MAX(c.muted)", &ContactRow::isMuted },
    });

const QString ofWorkspace = u"JOIN unified_conversation c ON c.contact_id=ct.id\n"
                            "WHERE ct.workspace_id=? AND ct.deleted_at IS NULL AND c.deleted_at IS NULL\n  AND "_s;

QString archivedCondition(InboxFilter filter)
{
    return filter == InboxFilter::Archived ? u"archived_at IS NOT NULL"_s : u"archived_at IS NULL"_s;
}

/// The conversations under the filter, newest first. The cross join and the unary plus fix the loop order: few are
/// walked, and many may be unread.
QString newestStatement(InboxFilter filter, qint64 nowMs)
{
    const QString archived = archivedCondition(filter);
    QString sql = uR"(SELECT c.contact_id, c.last_ts
FROM unified_conversation c CROSS JOIN contact ct ON ct.id=c.contact_id
WHERE c.deleted_at IS NULL AND c.%1 AND ct.workspace_id=? AND ct.deleted_at IS NULL AND (? = '' OR c.account_id = ?))"_s
                      .arg(archived);
    if (filter == InboxFilter::NeedsMe)
        sql += uR"(
  AND +c.contact_id IN (SELECT contact_id FROM unified_conversation
     WHERE deleted_at IS NULL AND %1 AND (? = '' OR account_id = ?) GROUP BY contact_id HAVING SUM(unread) > 0))"_s.arg(
            archived);
    else if (filter == InboxFilter::Today)
        sql += u"\n  AND c.last_ts >= %1"_s.arg(startOfTodayMs(nowMs));
    return sql + u"\nORDER BY c.last_ts DESC;"_s;
}

/// The newest people under the filter: `limit`, and those with the same time as the last one.
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

/// Those of `contacts` that are in a JSON array.
QString namedPeople(InboxFilter filter, qint64 nowMs)
{
    QString sql = ofWorkspace + u"(? = '' OR c.account_id = ?) AND c."_s + archivedCondition(filter)
        + u" AND ct.id IN (SELECT value FROM json_each(?))\nGROUP BY ct.id "_s;
    if (filter == InboxFilter::NeedsMe)
        sql += u"HAVING SUM(c.unread) > 0"_s;
    else if (filter == InboxFilter::Today)
        sql += u"HAVING MAX(c.last_ts) >= %1"_s.arg(startOfTodayMs(nowMs));
    return sql + u"\nORDER BY MAX(c.last_ts) DESC, ct.id LIMIT ?;"_s;
}

}

QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QString& account, int limit)
{
    const QString workspace = activeWorkspaceId(db);
    const QStringList people = newestPeople(db, filter, workspace, account, limit);
    return contacts.rows(
        db, namedPeople(filter, db.nowMs()), { workspace, account, account, jsonString(people), limit });
}

QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QStringList& contactIds)
{
    return contacts.rows(db, namedPeople(filter, db.nowMs()),
        { activeWorkspaceId(db), QString(), QString(), jsonString(contactIds), contactIds.size() });
}

std::optional<ContactRow> fetchContact(LocalDB& db, const QString& contactId)
{
    return contacts.first(db, ofWorkspace + u"ct.id=?\nGROUP BY ct.id;"_s, { activeWorkspaceId(db), contactId });
}

CountedPeople fetchCountedPeople(LocalDB& db, const std::optional<QStringList>& contactIds)
{
    const QString workspace = activeWorkspaceId(db);
    // The cross join fixes the loop order: few conversations match, and otherwise every person would be walked.
    const auto people = [&](const QString& condition) {
        QString sql = uR"(SELECT DISTINCT ct.id
FROM unified_conversation c CROSS JOIN contact ct ON ct.id=c.contact_id
WHERE %1 AND c.deleted_at IS NULL AND c.archived_at IS NULL AND ct.workspace_id=? AND ct.deleted_at IS NULL)"_s.arg(
            condition);
        QList<SqlValue> parameters { workspace, workspace };
        if (contactIds) {
            sql += u" AND c.contact_id IN (SELECT value FROM json_each(?))"_s;
            parameters.append(jsonString(*contactIds));
        }
        const QStringList ids = db.rows(sql, parameters, [](const SqlRow& row) { return row.text(0); });
        return QSet<QString>(ids.begin(), ids.end());
    };
    // The unary plus disables the index by workspace, since those by contact and by time find fewer rows.
    const QString unread = u"c.workspace_id=? AND c.unread > 0"_s;
    return { people(contactIds ? u'+' + unread : unread),
        people(u"+c.workspace_id=? AND c.last_ts >= %1"_s.arg(startOfTodayMs(db.nowMs()))) };
}

QHash<QString, LastMessage> fetchLastMessages(LocalDB& db, const QStringList& contactIds)
{
    QHash<QString, LastMessage> last;
    if (contactIds.isEmpty())
        return last;
    db.visitRows(uR"(SELECT p.value, l.direction, c.channel, l.status, l.media_type
FROM json_each(?) p JOIN unified_message l ON l.rowid=(SELECT m.rowid %1)
JOIN unified_conversation c ON c.id=l.conversation_id;)"_s.arg(newestMessage.arg(u"p.value"_s)),
        { jsonString(contactIds) }, [&](const SqlRow& row) {
            last.insert(row.text(0), { row.text(1), row.text(2), static_cast<int>(row.integer(3)), row.text(4) });
            return true;
        });
    return last;
}

std::optional<int> unreadOf(LocalDB& db, const QString& contactId)
{
    const auto total = db.scalar(
        "SELECT SUM(unread) FROM unified_conversation WHERE contact_id=? AND deleted_at IS NULL;", { contactId });
    return total ? std::optional(total->toInt()) : std::nullopt;
}

int totalUnread(LocalDB& db)
{
    const auto total = db.scalar("SELECT COALESCE(SUM(unread),0) FROM unified_conversation WHERE workspace_id=? AND "
                                 "deleted_at IS NULL AND archived_at IS NULL AND unread>0;",
        { activeWorkspaceId(db) });
    return total.value_or(QString()).toInt();
}

QHash<qint64, int> unreadByConversation(
    LocalDB& db, const QString& workspace, const std::optional<QStringList>& contactIds)
{
    QHash<qint64, int> unread;
    const auto add = [&](const SqlRow& row) {
        unread.insert(row.integer(0), static_cast<int>(row.integer(1)));
        return true;
    };
    if (!contactIds)
        db.visitRows("SELECT rowid, unread FROM unified_conversation WHERE workspace_id=? AND deleted_at IS NULL AND "
                     "archived_at IS NULL AND unread>0;",
            { workspace }, add);
    else
        db.visitRows(R"(SELECT rowid, iif(workspace_id=? AND deleted_at IS NULL AND archived_at IS NULL, unread, 0)
FROM unified_conversation WHERE contact_id IN (SELECT value FROM json_each(?));)",
            { workspace, jsonString(*contactIds) }, add);
    return unread;
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

void markUnread(LocalDB& db, const QString& contactId)
{
    db.run(R"(UPDATE unified_conversation SET unread=1, updated_at=?1 WHERE id=(SELECT id FROM unified_conversation
WHERE contact_id=?2 AND deleted_at IS NULL ORDER BY archived_at IS NOT NULL, last_ts DESC LIMIT 1)
  AND NOT EXISTS (SELECT 1 FROM unified_conversation WHERE contact_id=?2 AND deleted_at IS NULL AND unread>0);)",
        { db.nowMs(), contactId });
}

QList<ArchivedConversation> fetchArchived(LocalDB& db, const QStringList& contactIds)
{
    return db.rows(
        "SELECT id, archived_at FROM unified_conversation WHERE contact_id IN (SELECT value FROM json_each(?));",
        { jsonString(contactIds) },
        [](const SqlRow& row) { return ArchivedConversation { row.text(0), row.optionalInteger(1) }; });
}

bool restoreArchived(LocalDB& db, const QList<ArchivedConversation>& conversations)
{
    Transaction transaction(db);
    if (!transaction.begun())
        return false;
    for (const auto& [id, archivedAt] : conversations)
        db.run(
            "UPDATE unified_conversation SET archived_at=?, updated_at=? WHERE id=?;", { archivedAt, db.nowMs(), id });
    return transaction.commit();
}

bool setArchived(LocalDB& db, const QStringList& contactIds, bool archived)
{
    Transaction transaction(db);
    if (!transaction.begun())
        return false;
    for (const QString& contactId : contactIds) {
        if (archived)
            archiveContact(db, contactId);
        else
            unarchiveContact(db, contactId);
    }
    return transaction.commit();
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

QString contactOfConversation(LocalDB& db, const QString& conversationId)
{
    return db.scalar("SELECT contact_id FROM unified_conversation WHERE id=?;", { conversationId }).value_or(QString());
}

QString contactOfMessage(LocalDB& db, const QString& messageId)
{
    return db
        .scalar(R"(SELECT cc.contact_id FROM unified_message m
JOIN unified_conversation cc ON cc.id=m.conversation_id WHERE m.id=?;)",
            { messageId })
        .value_or(QString());
}

void setReaction(LocalDB& db, const QString& messageId, const QString& emoji)
{
    db.run("UPDATE unified_message SET reaction=?, updated_at=? WHERE id=?;", { emoji, db.nowMs(), messageId });
}

}
