#include "Store/Core/Workspaces.h"

#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Store/Core/Table.h"

#include <algorithm>

namespace corvane {

namespace {

const Table<WorkspaceRow> workspaces("sync_workspace",
    {
        { "workspace_id", &WorkspaceRow::workspaceId },
        { "workspace_name", &WorkspaceRow::workspaceName },
        { "workspace_slug", &WorkspaceRow::workspaceSlug, "''" },
        { "org_id", &WorkspaceRow::orgId },
        { "org_name", &WorkspaceRow::orgName },
        { "org_slug", &WorkspaceRow::orgSlug, "''" },
        { "is_default", &WorkspaceRow::isDefault },
        { "updated_at" },
    });

const QString fallback = u"local"_s;
const QString activeKey = u"nimb.activeWorkspaceId"_s;
const QString noticeKey = u"nimb.workspaceSelectionNotice"_s;

struct WorkspaceWithData {
    QString id;
    std::optional<QString> orgId;
    QString name;
};

QString cleanId(const QString& id)
{
    const QString trimmed = id.trimmed();
    return trimmed.isEmpty() ? fallback : trimmed;
}

std::optional<QString> selectedRow(LocalDB& db)
{
    return db.scalar("SELECT workspace_id FROM sync_workspace_selection WHERE key='active';");
}

std::optional<QString> orgOf(LocalDB& db, const QString& workspaceId)
{
    return db.scalar("SELECT org_id FROM sync_workspace WHERE workspace_id=?;", { workspaceId });
}

std::optional<WorkspaceWithData> workspaceWithDataWhenSelectedIsEmpty(LocalDB& db, const QString& id)
{
    // Runs for every ingested message. One row of the index shows whether the count is zero, so the others are not
    // counted.
    if (db.scalar("SELECT 1 FROM unified_conversation\nWHERE workspace_id=? AND deleted_at IS NULL LIMIT 1;", { id }))
        return std::nullopt;
    return db.firstRow(R"(SELECT c.workspace_id, sw.org_id,
       COALESCE(NULLIF(sw.workspace_name,''), NULLIF(c.workspace_id,''), 'workspace') AS name,
       COUNT(*) AS n
FROM unified_conversation c
LEFT JOIN sync_workspace sw ON sw.workspace_id=c.workspace_id
WHERE c.deleted_at IS NULL AND c.workspace_id != ?
GROUP BY c.workspace_id
HAVING n > 0
ORDER BY n DESC, MAX(c.last_ts) DESC
LIMIT 1;)",
        { id }, [](const SqlRow& row) { return WorkspaceWithData { row.text(0), row.optionalText(1), row.text(2) }; });
}

/// A column that references rows of that kind.
struct Reference {
    const char* table;
    const char* column;
    const char* kind;
};

/// Moves the rows of "local" into a real workspace. Ids change before the workspace does, since the workspace
/// identifies the rows; references change before the ids that they name. Returns whether there were any.
bool migrateLegacyLocalRowsInOpenTransaction(LocalDB& db, const QString& target)
{
    if (target == fallback)
        return false;
    qint64 changed = 0;
    const auto runFor
        = [&](const char* sql, const char* table, const QList<SqlValue>& parameters, const char* column = "") {
              changed += db.changedRows(QString::fromUtf8(sql)
                                            .replace("{table}"_L1, QLatin1StringView(table))
                                            .replace("{column}"_L1, QLatin1StringView(column)),
                  parameters);
          };
    for (const char* table : { "unified_message", "call_recording", "outbound_draft", "draft_metadata",
             "cloud_sync_cursor", "cloud_left_out", "cloud_keep_local" }) {
        runFor(R"(UPDATE {table}
SET conversation_id='web:' || ? || ':' || substr(conversation_id, 5)
WHERE conversation_id IN (
  SELECT id FROM unified_conversation
  WHERE workspace_id='local' AND id = 'web:' || channel || ':' || external_id
);)",
            table, { target });
    }
    db.run(R"(UPDATE contact_merge SET conv_ids_json=(
  SELECT json_group_array(CASE WHEN c.id IS NULL THEN moved.value ELSE 'web:' || ?1 || ':' || substr(c.id, 5) END)
  FROM json_each(contact_merge.conv_ids_json) AS moved
  LEFT JOIN unified_conversation c ON c.id=moved.value AND c.workspace_id='local'
    AND c.id = 'web:' || c.channel || ':' || c.external_id)
WHERE workspace_id='local' AND json_valid(conv_ids_json);)",
        { target });
    db.run(R"(UPDATE unified_conversation
SET id='web:' || ? || ':' || substr(id, 5)
WHERE workspace_id='local' AND id = 'web:' || channel || ':' || external_id;)",
        { target });
    const auto legacyIds = [](const char* kind) {
        return u"web:%1:%"_s.arg(QLatin1StringView(kind));
    };
    for (const auto& [table, column, kind] :
        { Reference { "contact_identity", "contact_id", "contact" }, { "contact_note", "contact_id", "contact" },
            { "deal", "contact_id", "contact" }, { "unified_conversation", "contact_id", "contact" },
            { "call_recording", "contact_id", "contact" }, { "crm_update_proposal", "contact_id", "contact" },
            { "contact_tag", "contact_id", "contact" }, { "contact_merge", "primary_contact_id", "contact" },
            { "contact_merge", "merged_contact_id", "contact" }, { "crm_deal", "contact_id", "contact" },
            { "crm_task", "contact_id", "contact" }, { "draft_metadata", "contact_id", "contact" },
            { "crm_update_proposal", "deal_id", "deal" }, { "deal", "company_id", "company" } }) {
        runFor(R"(UPDATE {table}
SET {column}='web:' || ? || ':' || substr({column}, 5)
WHERE workspace_id='local' AND {column} LIKE ?;)",
            table, { target, legacyIds(kind) }, column);
    }
    if (db.tableExists(u"work_memory_entries"_s)) {
        db.run(R"(UPDATE work_memory_entries SET scope='contact:web:' || ? || ':' || substr(scope, 13)
WHERE substr(scope, 9) IN (SELECT id FROM contact WHERE workspace_id='local' AND id LIKE 'web:contact:%');)",
            { target });
    }
    for (const char* table : { "contact", "company", "deal" }) {
        runFor(R"(UPDATE {table}
SET id='web:' || ? || ':' || substr(id, 5)
WHERE workspace_id='local' AND id LIKE ?;)",
            table, { target, legacyIds(table) });
    }
    for (const char* table : { "unified_conversation", "unified_message", "contact", "contact_identity",
             "contact_merge", "contact_tag", "contact_note", "pipeline", "deal", "company", "crm_deal", "crm_task",
             "crm_mutation_queue", "calendar_event", "outbound_draft", "draft_metadata", "audio_transcript",
             "call_recording", "call_transcript", "call_summary", "crm_update_proposal", "call_recording_rule",
             "call_auto_record_state" }) {
        if (db.columnExists(QLatin1StringView(table), u"workspace_id"_s))
            runFor("UPDATE {table} SET workspace_id=? WHERE workspace_id='local';", table, { target });
    }
    return changed > 0;
}

/// Ignores dangling references from rows of other workspaces: otherwise the transaction could never commit, and would
/// block every later write.
void commitEvenWithDanglingReferences(LocalDB& db)
{
    db.exec("COMMIT;");
    if (!db.inTransaction())
        return;
    db.exec("PRAGMA defer_foreign_keys=OFF;");
    db.exec("COMMIT;");
}

void storeWorkspaceRow(LocalDB& db, const WorkspaceRow& row)
{
    workspaces.insert(db, row, { { "updated_at", db.nowMs() } }, R"(
ON CONFLICT(workspace_id) DO UPDATE SET
  workspace_name=excluded.workspace_name,
  workspace_slug=excluded.workspace_slug,
  org_id=excluded.org_id,
  org_name=excluded.org_name,
  org_slug=excluded.org_slug,
  is_default=excluded.is_default,
  updated_at=excluded.updated_at)");
}

/// The one in use, else the preferred one, else the web's default, else the first.
const WorkspaceRow& chosenRow(
    const QList<WorkspaceRow>& rows, const QString& current, const std::optional<QString>& preferred)
{
    const auto find = [&](auto matches) {
        return std::find_if(rows.begin(), rows.end(), matches);
    };
    auto chosen = find([&](const WorkspaceRow& row) { return row.workspaceId == current; });
    if (chosen == rows.end() && preferred)
        chosen = find([&](const WorkspaceRow& row) { return row.workspaceId == *preferred; });
    if (chosen == rows.end())
        chosen = find([](const WorkspaceRow& row) { return row.isDefault; });
    return chosen == rows.end() ? rows.first() : *chosen;
}

}

QString WorkspaceRow::displayName() const
{
    const QString name = workspaceName.isEmpty() ? workspaceId : workspaceName;
    return orgName.isEmpty() || orgName == name ? name : orgName + u" · "_s + name;
}

QString activeWorkspaceId(LocalDB& db, Repair repair)
{
    const auto row = selectedRow(db);
    const auto copy = db.defaults().text(activeKey);
    const QString chosen = cleanId(row ? *row : copy.value_or(fallback));
    if (row != chosen)
        persistActiveWorkspace(db, chosen, std::nullopt, LegacyRows::Keep);
    else if (copy != chosen)
        db.defaults().setText(activeKey, chosen);
    if (repair == Repair::No)
        return chosen;
    const auto other = workspaceWithDataWhenSelectedIsEmpty(db, chosen);
    if (!other)
        return chosen;
    persistActiveWorkspace(db, other->id, other->orgId, LegacyRows::Keep);
    db.defaults().setText(noticeKey, u"Workspace changed — showing "_s + other->name);
    return other->id;
}

QString selectWorkspace(LocalDB& db, const QString& id, const std::optional<QString>& orgId)
{
    persistActiveWorkspace(db, cleanId(id), orgId, LegacyRows::Migrate);
    return activeWorkspaceId(db);
}

void persistActiveWorkspace(LocalDB& db, const QString& id, const std::optional<QString>& orgId, LegacyRows legacy)
{
    const auto org = orgId ? orgId : orgOf(db, id);
    const auto before = selectedRow(db);
    const bool insideAnother = db.inTransaction(); // only the outer transaction knows whether everything is kept
    db.exec("PRAGMA defer_foreign_keys=ON;");
    if (!insideAnother)
        db.exec("BEGIN;");
    db.run(R"(INSERT INTO sync_workspace_selection(key, workspace_id, org_id, updated_at)
VALUES('active', ?, ?, ?)
ON CONFLICT(key) DO UPDATE SET
  workspace_id=excluded.workspace_id,
  org_id=excluded.org_id,
  updated_at=excluded.updated_at;)",
        { id, org, db.nowMs() });
    const bool migrated = legacy == LegacyRows::Migrate && migrateLegacyLocalRowsInOpenTransaction(db, id);
    if (!insideAnother)
        commitEvenWithDanglingReferences(db);
    db.defaults().setText(activeKey, id);
    db.defaults().synchronise();
    // Observers read the active workspace, which would come back here while the row cannot be written.
    if (selectedRow(db) == id && (before != id || migrated))
        db.notifications().post(notifications::activeWorkspaceChanged);
}

QString storeWorkspaceRows(
    LocalDB& db, const QList<WorkspaceRow>& rows, const std::optional<QString>& preferredWorkspaceId)
{
    db.exec("BEGIN;");
    for (const WorkspaceRow& row : rows)
        storeWorkspaceRow(db, row);
    db.exec("COMMIT;");
    const QString current = activeWorkspaceId(db, Repair::No);
    if (rows.isEmpty())
        return activeWorkspaceId(db);
    const auto notice = db.defaults().text(noticeKey);
    const WorkspaceRow& chosen = chosenRow(rows, current, preferredWorkspaceId);
    persistActiveWorkspace(db, cleanId(chosen.workspaceId), chosen.orgId, LegacyRows::Migrate);
    const QString active = activeWorkspaceId(db);
    // A workspace that is gone from the web but has the only data stays selected without a message.
    if (active == current && !notice)
        db.defaults().remove(noticeKey);
    return active;
}

QList<WorkspaceRow> fetchWorkspaceRows(LocalDB& db)
{
    return workspaces.rows(db, "ORDER BY org_name COLLATE NOCASE, is_default DESC, workspace_name COLLATE NOCASE;", {});
}

std::optional<QString> consumeWorkspaceSelectionNotice(LocalDB& db)
{
    const auto notice = db.defaults().text(noticeKey);
    if (notice)
        db.defaults().remove(noticeKey);
    return notice;
}

}
