#include "Store/Work/WorkWrites.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Core/Transaction.h"
#include "Store/Work/WorkTables.h"

namespace corvane {

namespace {

const QString noMetadata = u"{}"_s;
const QString none = QLatin1StringView("");

/// "{prefix}:native:{uuid}": a row written by this program.
QString nativeId(const QString& prefix)
{
    return prefix + u":native:"_s + uuidText();
}

/// A statement on a table that may not exist.
bool runOn(LocalDB& db, const QString& table, const QString& sql, const QList<SqlValue>& parameters)
{
    return db.tableExists(table) && db.run(sql, parameters);
}

void touchWorkContext(LocalDB& db, const WorkContextId& id, const QString& at)
{
    if (id)
        runOn(db, u"work_context"_s, u"UPDATE work_context SET updated_at=? WHERE id=?;"_s, { at, *id });
}

/// Inserts a row and touches its context.
template <typename Row>
bool save(LocalDB& db, const Table<Row>& table, const Row& row, const WorkContextId& context, GivenValues given,
    const char* onConflict = "")
{
    const QString now = isoTime(db.nowMs());
    given += GivenValues { { "context_id", context }, { "metadata_json", noMetadata }, { "created_at", now },
        { "updated_at", now } };
    if (!db.tableExists(table.name()) || !table.insert(db, row, given, onConflict))
        return false;
    touchWorkContext(db, context, now);
    return true;
}

/// A new row, as it is stored.
template <typename Row>
std::optional<Row> insert(
    LocalDB& db, const Table<Row>& table, const Row& row, const WorkContextId& context, const GivenValues& given = {})
{
    return save(db, table, row, context, given) ? table.first(db, u"WHERE id=?;"_s, { row.id }) : std::nullopt;
}

/// Updates a row and touches its context.
bool updateStatus(LocalDB& db, const QString& table, const QString& assignments, const QList<SqlValue>& values,
    const QString& id, const QString& status)
{
    if (!db.tableExists(table) || id.isEmpty() || status.isEmpty())
        return false;
    const QString now = isoTime(db.nowMs());
    const bool updated = db.changedRows(u"UPDATE %1 SET %2, updated_at=? WHERE id=?;"_s.arg(table, assignments),
                             QList<SqlValue> { status } + values + QList<SqlValue> { now, id })
        == 1;
    if (updated)
        runOn(db, u"work_context"_s,
            u"UPDATE work_context SET updated_at=? WHERE id=(SELECT context_id FROM %1 WHERE id=?);"_s.arg(table),
            { now, id });
    return updated;
}

}

std::optional<WorkContextRow> upsertWorkContext(LocalDB& db, const NewWorkContext& context)
{
    const WorkContextRow row { .id = u"ctx:%1:%2"_s.arg(context.module, context.slug),
        .module = context.module,
        .kind = context.kind,
        .slug = context.slug,
        .title = context.title,
        .subtitle = context.subtitle,
        .status = u"active"_s,
        .owner = context.owner };
    const char* const replaceAllButId = R"(
ON CONFLICT(module, slug) DO UPDATE SET kind=excluded.kind, title=excluded.title, subtitle=excluded.subtitle,
  status=excluded.status, owner=excluded.owner, external_ref=excluded.external_ref,
  metadata_json=excluded.metadata_json, updated_at=excluded.updated_at)";
    if (!save(db, workContexts, row, {}, {}, replaceAllButId))
        return std::nullopt;
    return fetchWorkContext(db, context.module, context.slug);
}

std::optional<WorkItemRecord> insertWorkItem(LocalDB& db, const NewWorkItem& item)
{
    const WorkItemRecord row { .id = nativeId(u"item"_s),
        .module = item.module,
        .kind = item.kind,
        .title = item.title,
        .status = u"open"_s,
        .priority = item.priority,
        .owner = item.owner,
        .source = item.source,
        .summary = item.summary };
    return insert(db, workItems, row, item.context, { { "due_at", none } });
}

std::optional<WorkDecisionRecord> insertWorkDecision(LocalDB& db, const NewWorkDecision& decision)
{
    const WorkDecisionRecord row { .id = nativeId(u"dec"_s),
        .module = decision.module,
        .title = decision.title,
        .status = u"proposed"_s,
        .proposal = decision.proposal,
        .rationale = decision.rationale,
        .risk = decision.risk };
    return insert(db, workDecisions, row, decision.context);
}

std::optional<WorkEvidenceRecord> insertWorkEvidence(LocalDB& db, const NewWorkEvidence& evidence)
{
    const WorkEvidenceRecord row { .id = nativeId(u"ev"_s),
        .module = evidence.module,
        .kind = evidence.kind,
        .title = evidence.title,
        .source = evidence.source,
        .uri = evidence.uri,
        .summary = evidence.summary };
    return insert(db, workEvidence, row, evidence.context, { { "item_id", evidence.itemId } });
}

std::optional<WorkMessageRecord> insertWorkMessage(LocalDB& db, const NewWorkMessage& message)
{
    if (message.body.trimmed().isEmpty())
        return std::nullopt;
    const WorkMessageRecord row { .id = nativeId(u"msg"_s),
        .module = message.module,
        .speaker = message.speaker,
        .role = message.role,
        .kind = message.kind,
        .body = message.body,
        .status = u"posted"_s };
    return insert(db, workMessages, row, message.context);
}

std::optional<WorkSessionRecord> insertWorkSession(LocalDB& db, const NewWorkSession& session)
{
    const WorkSessionRecord row { .id = nativeId(u"sess"_s),
        .module = session.module,
        .purpose = session.purpose,
        .owner = session.owner,
        .tool = session.tool,
        .status = session.status,
        .heartbeatAt = isoTime(db.nowMs()) };
    return insert(db, workSessions, row, session.context, { { "endpoint", none } });
}

std::optional<WorkAgentRecord> upsertWorkAgent(LocalDB& db, const NewWorkAgent& agent)
{
    const QString context = agent.context.value_or(none); // NULLs are distinct in a unique key
    const WorkAgentRecord row { .id = nativeId(u"agent"_s),
        .module = agent.module,
        .name = agent.name,
        .tool = agent.tool,
        .role = agent.role,
        .status = agent.status,
        .currentTask = agent.currentTask,
        .heartbeatAt = isoTime(db.nowMs()) };
    const char* const keepId = R"(
ON CONFLICT(module, context_id, name, tool) DO UPDATE SET role=excluded.role, status=excluded.status,
  current_task=excluded.current_task, session_id=excluded.session_id, heartbeat_at=excluded.heartbeat_at,
  updated_at=excluded.updated_at)";
    if (!save(db, workAgents, row, agent.context, { { "context_id", context }, { "session_id", agent.sessionId } },
            keepId))
        return std::nullopt;
    return workAgents.first(db, u"WHERE module=? AND context_id=? AND name=? AND tool=?;"_s,
        { agent.module, context, agent.name, agent.tool });
}

std::optional<WorkMemoryRecord> insertWorkMemory(LocalDB& db, const NewWorkMemory& memory)
{
    const WorkMemoryRecord row { .id = nativeId(u"mem"_s),
        .module = memory.module,
        .kind = memory.kind,
        .body = memory.body,
        .source = memory.source,
        .confidence = memory.confidence,
        .owner = memory.owner };
    return insert(db, workMemory, row, memory.context);
}

bool updateWorkItemStatus(LocalDB& db, const QString& id, const QString& status)
{
    return updateStatus(db, u"work_item"_s, u"status=?"_s, {}, id.trimmed(), status.trimmed());
}

WorkItemSaved updateWorkItem(LocalDB& db, const WorkItemRecord& seen, const WorkItemRecord& wanted)
{
    Transaction transaction(db);
    const auto now = transaction.begun() ? fetchWorkItem(db, seen.id) : std::nullopt;
    if (!now)
        return WorkItemSaved::Failed;
    if (*now != seen)
        return WorkItemSaved::Changed;
    const bool done = updateStatus(db, u"work_item"_s, u"status=?, title=?, kind=?, priority=?, owner=?, summary=?"_s,
                          { wanted.title, wanted.kind, wanted.priority, wanted.owner, wanted.summary }, seen.id,
                          wanted.status.trimmed())
        && transaction.commit();
    return done ? WorkItemSaved::Saved : WorkItemSaved::Failed;
}

bool updateWorkDecisionStatus(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy)
{
    return updateStatus(
        db, u"work_decision"_s, u"status=?, decided_by=?"_s, { decidedBy }, id.trimmed(), status.trimmed());
}

bool updateWorkMemoryStatus(LocalDB& db, const QString& id, const QString& status, const QString& owner)
{
    const QString word = status.trimmed();
    const QString verifiedAt = word == "approved"_L1 ? isoTime(db.nowMs()) : none;
    return updateStatus(
        db, u"work_memory"_s, u"status=?, owner=?, verified_at=?"_s, { owner, verifiedAt }, id.trimmed(), word);
}

}
