#include "Store/IdentityQueries.h"

#include "Foundation/Ids.h"
#include "Foundation/Log.h"
#include "Store/Workspaces.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace corvane {

std::optional<QString> mergeContacts(LocalDB& db, const QString& primary, const QString& merged, const QString& signal)
{
    if (primary == merged)
        return std::nullopt;
    const QStringList conversations
        = db.rows("SELECT id FROM unified_conversation WHERE contact_id=? AND deleted_at IS NULL;", { merged },
            [](const SqlRow& row) { return row.text(0); });
    if (conversations.isEmpty())
        return std::nullopt;
    // The record comes first: whatever ends the process from here on, the merge can be undone.
    const qint64 now = db.nowMs();
    const QString id = stampedId(QStringLiteral("mg"), now);
    const bool recorded = db.run(
        R"(INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, signal, conv_ids_json, created_at)
VALUES(?,?,?,?,?,?,?);)",
        { id, activeWorkspaceId(db), primary, merged, signal, jsonString(conversations), now });
    if (!recorded)
        return std::nullopt;
    for (const QString& conversation : conversations)
        db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { primary, conversation });
    return id;
}

bool unmergeContacts(LocalDB& db, const QString& mergeId)
{
    const auto moved
        = db.scalar("SELECT conv_ids_json FROM contact_merge WHERE id=? AND undone_at IS NULL;", { mergeId });
    const auto merged = db.scalar("SELECT merged_contact_id FROM contact_merge WHERE id=?;", { mergeId });
    if (!moved || !merged)
        return false;
    const QJsonDocument conversations = QJsonDocument::fromJson(moved->toUtf8());
    if (!conversations.isArray()) {
        log(QStringLiteral("LocalDB: the conversations of merge %1 cannot be read").arg(mergeId));
        return false;
    }
    // Marked last: an interrupted one is still live, and moving twice is moving once.
    bool returned = true;
    for (const QJsonValue& conversation : conversations.array())
        returned
            = db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { *merged, conversation.toString() })
            && returned;
    return returned && db.run("UPDATE contact_merge SET undone_at=? WHERE id=?;", { db.nowMs(), mergeId });
}

QList<LiveMerge> activeMerges(LocalDB& db, const QString& primary)
{
    return db.rows("SELECT id, merged_contact_id, signal, created_at FROM contact_merge WHERE primary_contact_id=? AND "
                   "undone_at IS NULL ORDER BY created_at DESC;",
        { primary }, [&](const SqlRow& row) {
            return LiveMerge { row.text(0), primary, row.text(1), row.text(2), row.integer(3) };
        });
}

bool contactExists(LocalDB& db, const QString& contactId)
{
    return db
        .scalar("SELECT 1 FROM contact WHERE workspace_id=? AND id=? AND deleted_at IS NULL LIMIT 1;",
            { activeWorkspaceId(db), contactId })
        .has_value();
}

QString displayName(LocalDB& db, const QString& contactId)
{
    return db
        .scalar(R"(SELECT COALESCE(NULLIF(ct.display_name,''), NULLIF(c.title,''), c.external_id, '?')
FROM contact ct LEFT JOIN unified_conversation c ON c.contact_id=ct.id AND c.deleted_at IS NULL
WHERE ct.id=? AND ct.deleted_at IS NULL ORDER BY c.last_ts DESC LIMIT 1;)",
            { contactId })
        .value_or(QStringLiteral("?"));
}

QList<ContactIdentity> identitiesFor(LocalDB& db, const QString& contactId)
{
    return db.rows(R"(SELECT channel, handle, COALESCE(email,''), COALESCE(phone,'')
FROM contact_identity WHERE contact_id=? AND deleted_at IS NULL ORDER BY channel, handle;)",
        { contactId },
        [](const SqlRow& row) { return ContactIdentity { row.text(0), row.text(1), row.text(2), row.text(3) }; });
}

}
