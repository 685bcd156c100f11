#include "Store/Work/WorkWrites.h"

#include "Foundation/Ids.h"

#include <algorithm>

namespace corvane {

namespace {

const QString noMetadata = QStringLiteral("{}");
const QString none = QLatin1String("");

/// "{prefix}:native:{uuid}": a row that this program wrote.
QString nativeId(const QString& prefix)
{
    return prefix + QStringLiteral(":native:") + uuidText();
}

/// One statement on a table that may not be there.
bool runOn(LocalDB& db, const QString& table, const QString& sql, const QList<SqlValue>& parameters)
{
    return db.tableExists(table) && db.run(sql, parameters);
}

void touchWorkContext(LocalDB& db, const WorkContextId& id, const QString& at)
{
    if (id)
        runOn(db, QStringLiteral("work_context"), QStringLiteral("UPDATE work_context SET updated_at=? WHERE id=?;"),
            { at, *id });
}

/// A new row, and the sign of life of its context.
bool save(LocalDB& db, const QString& table, const WorkContextId& context, const QString& now, const QString& sql,
    const QList<SqlValue>& values)
{
    if (!runOn(db, table, sql, values))
        return false;
    touchWorkContext(db, context, now);
    return true;
}

template <typename Record, typename Matches>
std::optional<Record> firstOf(const QList<Record>& records, const Matches& matches)
{
    const auto found = std::ranges::find_if(records, matches);
    return found == records.end() ? std::nullopt : std::optional(*found);
}

template <typename Record> std::optional<Record> withId(const QList<Record>& records, const QString& id)
{
    return firstOf(records, [&](const Record& record) { return record.id == id; });
}

/// One row of a table moves on, and with it the context that it belongs to.
bool updateStatus(LocalDB& db, const QString& table, const QString& assignments, const QList<SqlValue>& values,
    const QString& id, const QString& status)
{
    if (!db.tableExists(table) || id.isEmpty() || status.isEmpty())
        return false;
    const QString now = isoTime(db.nowMs());
    const bool updated
        = db.changedRows(QStringLiteral("UPDATE %1 SET %2, updated_at=? WHERE id=?;").arg(table, assignments),
              QList<SqlValue> { status } + values + QList<SqlValue> { now, id })
        == 1;
    if (updated)
        runOn(db, QStringLiteral("work_context"),
            QStringLiteral("UPDATE work_context SET updated_at=? WHERE id=(SELECT context_id FROM %1 WHERE id=?);")
                .arg(table),
            { now, id });
    return updated;
}

}

std::optional<WorkContextRow> upsertWorkContext(LocalDB& db, const NewWorkContext& context)
{
    const QString now = isoTime(db.nowMs());
    if (!runOn(db, QStringLiteral("work_context"),
            QStringLiteral(
                R"(INSERT INTO work_context(id, module, kind, slug, title, subtitle, status, owner, external_ref, metadata_json, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?,?)
ON CONFLICT(module, slug) DO UPDATE SET kind=excluded.kind, title=excluded.title, subtitle=excluded.subtitle,
  status=excluded.status, owner=excluded.owner, external_ref=excluded.external_ref,
  metadata_json=excluded.metadata_json, updated_at=excluded.updated_at;)"),
            { QStringLiteral("ctx:%1:%2").arg(context.module, context.slug), context.module, context.kind, context.slug,
                context.title, context.subtitle, QStringLiteral("active"), context.owner, none, noMetadata, now, now }))
        return std::nullopt;
    return firstOf(fetchWorkContexts(db, context.module, 500),
        [&](const WorkContextRow& row) { return row.slug == context.slug; });
}

std::optional<WorkItemRecord> insertWorkItem(LocalDB& db, const NewWorkItem& item)
{
    const QString id = nativeId(QStringLiteral("item"));
    const QString now = isoTime(db.nowMs());
    if (!save(db, QStringLiteral("work_item"), item.context, now,
            QStringLiteral(
                R"(INSERT INTO work_item(id, context_id, module, kind, title, status, priority, owner, session_id, source, summary, due_at, metadata_json, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,NULL,?,?,?,?,?,?);)"),
            { id, item.context, item.module, item.kind, item.title, QStringLiteral("open"), item.priority, item.owner,
                item.source, item.summary, none, noMetadata, now, now }))
        return std::nullopt;
    return withId(fetchWorkItems(db, item.module, item.context, 200), id);
}

std::optional<WorkDecisionRecord> insertWorkDecision(LocalDB& db, const NewWorkDecision& decision)
{
    const QString id = nativeId(QStringLiteral("dec"));
    const QString now = isoTime(db.nowMs());
    if (!save(db, QStringLiteral("work_decision"), decision.context, now,
            QStringLiteral(
                R"(INSERT INTO work_decision(id, context_id, module, title, status, proposal, rationale, risk, decided_by, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?);)"),
            { id, decision.context, decision.module, decision.title, QStringLiteral("proposed"), decision.proposal,
                decision.rationale, decision.risk, none, now, now }))
        return std::nullopt;
    return withId(fetchWorkDecisions(db, decision.module, decision.context, 50), id);
}

std::optional<WorkEvidenceRecord> insertWorkEvidence(LocalDB& db, const NewWorkEvidence& evidence)
{
    const QString id = nativeId(QStringLiteral("ev"));
    const QString now = isoTime(db.nowMs());
    if (!save(db, QStringLiteral("work_evidence"), evidence.context, now,
            QStringLiteral(
                R"(INSERT INTO work_evidence(id, context_id, module, item_id, session_id, kind, title, source, uri, summary, metadata_json, created_at)
VALUES(?,?,?,?,NULL,?,?,?,?,?,?,?);)"),
            { id, evidence.context, evidence.module, evidence.itemId, evidence.kind, evidence.title, evidence.source,
                evidence.uri, evidence.summary, noMetadata, now }))
        return std::nullopt;
    return withId(fetchWorkEvidence(db, evidence.module, evidence.context, 200), id);
}

std::optional<WorkMessageRecord> insertWorkMessage(LocalDB& db, const NewWorkMessage& message)
{
    if (message.body.trimmed().isEmpty())
        return std::nullopt;
    const QString id = nativeId(QStringLiteral("msg"));
    const QString now = isoTime(db.nowMs());
    if (!save(db, QStringLiteral("work_message"), message.context, now,
            QStringLiteral(
                R"(INSERT INTO work_message(id, context_id, module, session_id, agent_id, speaker, role, kind, body, status, metadata_json, created_at)
VALUES(?,?,?,NULL,NULL,?,?,?,?,?,?,?);)"),
            { id, message.context, message.module, message.speaker, message.role, message.kind, message.body,
                QStringLiteral("posted"), noMetadata, now }))
        return std::nullopt;
    return withId(fetchWorkMessages(db, message.module, message.context, 200), id);
}

std::optional<WorkSessionRecord> insertWorkSession(LocalDB& db, const NewWorkSession& session)
{
    const QString id = nativeId(QStringLiteral("sess"));
    const QString now = isoTime(db.nowMs());
    if (!save(db, QStringLiteral("work_session"), session.context, now,
            QStringLiteral(
                R"(INSERT INTO work_session(id, context_id, module, purpose, owner, tool, status, pid, cwd, endpoint, current_item_id, heartbeat_at, metadata_json, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,NULL,'',?,NULL,?,?,?,?);)"),
            { id, session.context, session.module, session.purpose, session.owner, session.tool, session.status, none,
                now, noMetadata, now, now }))
        return std::nullopt;
    return withId(fetchWorkSessions(db, session.module, session.context, 50), id);
}

std::optional<WorkAgentRecord> upsertWorkAgent(LocalDB& db, const NewWorkAgent& agent)
{
    const QString now = isoTime(db.nowMs());
    const QString context = agent.context.value_or(none); // NULL never equals itself, and the key would not hold
    if (!save(db, QStringLiteral("work_agent"), agent.context, now,
            QStringLiteral(
                R"(INSERT INTO work_agent(id, context_id, module, name, tool, role, status, current_task, session_id, heartbeat_at, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?,?)
ON CONFLICT(module, context_id, name, tool) DO UPDATE SET role=excluded.role, status=excluded.status,
  current_task=excluded.current_task, session_id=excluded.session_id, heartbeat_at=excluded.heartbeat_at,
  updated_at=excluded.updated_at;)"),
            { nativeId(QStringLiteral("agent")), context, agent.module, agent.name, agent.tool, agent.role,
                agent.status, agent.currentTask, agent.sessionId, now, now, now }))
        return std::nullopt;
    return firstOf(fetchWorkAgents(db, agent.module, context, 100),
        [&](const WorkAgentRecord& row) { return row.name == agent.name && row.tool == agent.tool; });
}

std::optional<WorkMemoryRecord> insertWorkMemory(LocalDB& db, const NewWorkMemory& memory)
{
    const QString id = nativeId(QStringLiteral("mem"));
    const QString now = isoTime(db.nowMs());
    if (!save(db, QStringLiteral("work_memory"), memory.context, now,
            QStringLiteral(
                R"(INSERT INTO work_memory(id, context_id, module, kind, body, source, confidence, status, owner, verified_at, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,'proposed',?,'',?,?);)"),
            { id, memory.context, memory.module, memory.kind, memory.body, memory.source, memory.confidence,
                memory.owner, now, now }))
        return std::nullopt;
    return withId(fetchWorkMemory(db, memory.module, memory.context, 200), id);
}

bool updateWorkItemStatus(LocalDB& db, const QString& id, const QString& status)
{
    return updateStatus(
        db, QStringLiteral("work_item"), QStringLiteral("status=?"), {}, id.trimmed(), status.trimmed());
}

bool updateWorkDecisionStatus(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy)
{
    return updateStatus(db, QStringLiteral("work_decision"), QStringLiteral("status=?, decided_by=?"), { decidedBy },
        id.trimmed(), status.trimmed());
}

bool updateWorkMemoryStatus(LocalDB& db, const QString& id, const QString& status, const QString& owner)
{
    const QString word = status.trimmed();
    const QString verifiedAt = word == QLatin1String("approved") ? isoTime(db.nowMs()) : none;
    return updateStatus(db, QStringLiteral("work_memory"), QStringLiteral("status=?, owner=?, verified_at=?"),
        { owner, verifiedAt }, id.trimmed(), word);
}

}
