#include "Store/People/IdentityQueries.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/ThreadQueries.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace corvane {

namespace {

/// The contact at the end of the live merges; empty if they are circular.
QStringList mergeChain(LocalDB& db, const QString& contact)
{
    QStringList chain { contact };
    for (;;) {
        const QString next = effectiveContactId(db, chain.last());
        if (next == chain.last())
            return chain;
        if (chain.contains(next))
            return {};
        chain.append(next);
    }
}

/// Adds the conversation to the live merge of its contact, unless it is there.
bool recordInMerge(LocalDB& db, const QString& merged, const QString& conversation)
{
    const auto merge = db.firstRow(
        "SELECT id, conv_ids_json FROM contact_merge WHERE merged_contact_id=? AND undone_at IS NULL LIMIT 1;",
        { merged }, [](const SqlRow& row) { return std::pair(row.text(0), row.text(1)); });
    const QJsonDocument recorded = merge ? QJsonDocument::fromJson(merge->second.toUtf8()) : QJsonDocument();
    if (!recorded.isArray())
        return false;
    QJsonArray conversations = recorded.array();
    if (conversations.contains(conversation))
        return true;
    conversations.append(conversation);
    return db.run("UPDATE contact_merge SET conv_ids_json=? WHERE id=?;",
        { QString::fromUtf8(QJsonDocument(conversations).toJson(QJsonDocument::Compact)), merge->first });
}

}

QList<PersonName> fetchPeopleWithConversations(LocalDB& db)
{
    QList<PersonName> people;
    db.visitRows(R"(SELECT ct.id, COALESCE(ct.display_name,''),
  (SELECT COUNT(*) FROM unified_conversation c WHERE c.contact_id=ct.id AND c.deleted_at IS NULL)
FROM contact ct WHERE ct.workspace_id=? AND ct.deleted_at IS NULL;)",
        { activeWorkspaceId(db) }, [&](const SqlRow& row) {
            if (row.integer(2) > 0)
                people.append({ row.text(0), row.text(1) });
            return true;
        });
    return people;
}

QList<std::pair<QString, QString>> fetchPairsSharing(LocalDB& db, SharedSign sign)
{
    const QString sql = uR"(SELECT a.contact_id, b.contact_id FROM contact_identity a JOIN contact_identity b
  ON a.%1=b.%1 AND a.contact_id<b.contact_id
WHERE a.workspace_id=? AND a.%1 IS NOT NULL AND a.%1!='' AND a.deleted_at IS NULL AND b.deleted_at IS NULL;)"_s.arg(
        sign == SharedSign::Email ? u"email"_s : u"phone"_s);
    return db.rows(
        sql, { activeWorkspaceId(db) }, [](const SqlRow& row) { return std::pair(row.text(0), row.text(1)); });
}

void lendPicture(LocalDB& db, const QString& merged)
{
    const QString person = personBehind(db, merged);
    if (person != merged)
        db.run(R"(UPDATE contact SET avatar_path=(SELECT avatar_path FROM contact WHERE id=?), updated_at=?
WHERE id=? AND COALESCE(avatar_path,'')='';)",
            { merged, db.nowMs(), person });
}

std::optional<QString> mergeContacts(LocalDB& db, const QString& primary, const QString& merged, const QString& signal)
{
    if (primary == merged)
        return std::nullopt;
    const QStringList conversations
        = db.rows("SELECT id FROM unified_conversation WHERE contact_id=? AND deleted_at IS NULL;", { merged },
            [](const SqlRow& row) { return row.text(0); });
    if (conversations.isEmpty())
        return std::nullopt;
    // The record is written first: even after a crash the merge can be undone.
    const qint64 now = db.nowMs();
    const QString id = stampedId(u"mg"_s, now);
    const bool recorded = db.run(
        R"(INSERT INTO contact_merge(id, workspace_id, primary_contact_id, merged_contact_id, signal, conv_ids_json, created_at)
VALUES(?,?,?,?,?,?,?);)",
        { id, activeWorkspaceId(db), primary, merged, signal, jsonString(conversations), now });
    if (!recorded)
        return std::nullopt;
    for (const QString& conversation : conversations)
        db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { primary, conversation });
    lendPicture(db, merged);
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
        log(u"LocalDB: the conversations of merge %1 cannot be read"_s.arg(mergeId));
        return false;
    }
    // Marked last: an interrupted unmerge is still live, and moving twice does no harm.
    bool returned = true;
    for (const QJsonValue& conversation : conversations.array())
        returned
            = db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { *merged, conversation.toString() })
            && returned;
    // A picture is a file of one contact, so if both have it, it was copied.
    db.run(R"(UPDATE contact SET avatar_path=NULL, updated_at=?
WHERE id=(SELECT primary_contact_id FROM contact_merge WHERE id=?)
  AND avatar_path=(SELECT NULLIF(avatar_path,'') FROM contact WHERE id=?);)",
        { db.nowMs(), mergeId, *merged });
    return returned && db.run("UPDATE contact_merge SET undone_at=? WHERE id=?;", { db.nowMs(), mergeId });
}

void repeatMerges(LocalDB& db)
{
    struct Returned {
        QString conversation;
        QString contact;
    };
    // The cross join fixes the loop order: few are merged, and otherwise every conversation would be walked.
    const auto returned = db.rows(R"(SELECT DISTINCT c.id, c.contact_id
FROM contact_merge m CROSS JOIN unified_conversation c ON c.contact_id=m.merged_contact_id
WHERE m.undone_at IS NULL AND c.deleted_at IS NULL;)",
        {}, [](const SqlRow& row) { return Returned { row.text(0), row.text(1) }; });
    for (const auto& [conversation, contact] : returned) {
        const QStringList chain = mergeChain(db, contact);
        for (qsizetype step = 1; step < chain.size(); ++step) {
            if (!recordInMerge(db, chain.at(step - 1), conversation))
                break;
            db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { chain.at(step), conversation });
        }
    }
}

QString personBehind(LocalDB& db, const QString& id)
{
    const QStringList chain = mergeChain(db, id);
    return chain.isEmpty() ? id : chain.last();
}

QList<LiveMerge> activeMerges(LocalDB& db, const QString& primary)
{
    return db.rows("SELECT id, merged_contact_id, signal, created_at FROM contact_merge WHERE primary_contact_id=? AND "
                   "undone_at IS NULL ORDER BY created_at DESC;",
        { primary }, [&](const SqlRow& row) {
            return LiveMerge { row.text(0), primary, row.text(1), row.text(2), row.integer(3) };
        });
}

QList<ContactLink> fetchContactLinks(LocalDB& db)
{
    // With MAX, SQLite takes the other columns from the same row.
    return db.rows(R"(SELECT ct.id, COALESCE(NULLIF(ct.display_name,''), NULLIF(c.title,''), c.external_id, '?'),
  c.channel, MAX(c.last_ts)
FROM contact ct JOIN unified_conversation c ON c.contact_id=ct.id
WHERE ct.workspace_id=? AND ct.deleted_at IS NULL AND c.deleted_at IS NULL
GROUP BY ct.id ORDER BY MAX(c.last_ts) DESC;)",
        { activeWorkspaceId(db) },
        [](const SqlRow& row) { return ContactLink { row.text(0), row.text(1), row.text(2) }; });
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
        .value_or(u"?"_s);
}

QList<ContactIdentity> identitiesFor(LocalDB& db, const QString& contactId)
{
    return db.rows(R"(SELECT channel, handle, COALESCE(email,''), COALESCE(phone,'')
FROM contact_identity WHERE contact_id=? AND deleted_at IS NULL ORDER BY channel, handle;)",
        { contactId },
        [](const SqlRow& row) { return ContactIdentity { row.text(0), row.text(1), row.text(2), row.text(3) }; });
}

}
