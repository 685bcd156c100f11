#include "Store/Work/WorkRecords.h"

namespace corvane {

namespace {

const QString byRisk = QStringLiteral(
    "ORDER BY CASE risk WHEN 'money' THEN 0 WHEN 'credential' THEN 1 WHEN 'external' THEN 2 WHEN 'high' THEN 3 ELSE 4 "
    "END, updated_at DESC");
const QString lastChangedFirst = QStringLiteral("ORDER BY updated_at DESC");

const QString decisionTable = QStringLiteral("work_decision");
const QString decisionColumns = QStringLiteral("SELECT id, COALESCE(context_id,''), module, title, status, proposal, "
                                               "rationale, risk, decided_by, updated_at\nFROM work_decision\n");
const QString agentTable = QStringLiteral("work_agent");
const QString agentColumns = QStringLiteral("SELECT id, COALESCE(context_id,''), module, name, tool, role, status, "
                                            "COALESCE(current_task,''), COALESCE(heartbeat_at,'')\nFROM work_agent\n");

/// What every list here is: rows of a table that may not be there.
template <typename Read>
auto guardedRows(LocalDB& db, const QString& table, const QString& sql, const QList<SqlValue>& parameters, Read read)
{
    return db.tableExists(table) ? db.rows(sql, parameters, read) : decltype(db.rows(sql, parameters, read)) {};
}

/// The rows of a module, in one of its contexts or in all.
template <typename Read>
auto moduleRows(LocalDB& db, const QString& table, const QString& columns, const QString& order, const QString& module,
    const WorkContextId& context, int limit, Read read)
{
    return guardedRows(db, table,
        columns + QStringLiteral("WHERE module=? AND (? IS NULL OR context_id=?)\n") + order
            + QStringLiteral("\nLIMIT ?;"),
        { module, context, context, limit }, read);
}

WorkDecisionRecord decisionFrom(const SqlRow& row)
{
    return { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5), row.text(6), row.text(7),
        row.text(8), row.text(9) };
}

WorkAgentRecord agentFrom(const SqlRow& row)
{
    return { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5), row.text(6), row.text(7),
        row.text(8) };
}

/// A join that counts a context's rows in another table as `{alias}.n`; a table that is missing has none.
QString joinedCount(LocalDB& db, const QString& alias, const QString& table, const QString& which)
{
    const QString counted = db.tableExists(table)
        ? QStringLiteral("SELECT context_id, COUNT(*) AS n FROM %1 WHERE %2 GROUP BY context_id").arg(table, which)
        : QStringLiteral("SELECT NULL AS context_id, 0 AS n");
    return QStringLiteral("LEFT JOIN (%1) %2 ON %2.context_id=c.id\n").arg(counted, alias);
}

}

QList<WorkContextRow> fetchWorkContexts(LocalDB& db, const QString& module, int limit)
{
    const QString live = QStringLiteral("status IN ('running','live')");
    const QString joins
        = joinedCount(db, QStringLiteral("i"), QStringLiteral("work_item"), QStringLiteral("status IS NOT 'done'"))
        + joinedCount(db, QStringLiteral("s"), QStringLiteral("work_session"), live)
        + joinedCount(db, QStringLiteral("a"), agentTable, live);
    return guardedRows(db, QStringLiteral("work_context"),
        QStringLiteral("SELECT c.id, c.module, c.kind, c.slug, c.title, c.subtitle, c.status, c.owner, "
                       "c.external_ref, c.updated_at, COALESCE(i.n,0), COALESCE(s.n,0), COALESCE(a.n,0)\n"
                       "FROM work_context c\n")
            + joins + QStringLiteral("WHERE c.module=?\nORDER BY c.updated_at DESC\nLIMIT ?;"),
        { module, limit }, [](const SqlRow& row) {
            return WorkContextRow { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5),
                row.text(6), row.text(7), row.text(8), row.text(9), static_cast<int>(row.integer(10)),
                static_cast<int>(row.integer(11)), static_cast<int>(row.integer(12)) };
        });
}

QList<WorkItemRecord> fetchWorkItems(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, QStringLiteral("work_item"),
        QStringLiteral("SELECT id, COALESCE(context_id,''), module, kind, title, status, priority, owner, source, "
                       "summary, updated_at\nFROM work_item\n"),
        QStringLiteral("ORDER BY CASE priority WHEN 'high' THEN 0 WHEN 'normal' THEN 1 ELSE 2 END, updated_at DESC"),
        module, context, limit, [](const SqlRow& row) {
            return WorkItemRecord { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5),
                row.text(6), row.text(7), row.text(8), row.text(9), row.text(10) };
        });
}

QList<WorkDecisionRecord> fetchWorkDecisions(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, decisionTable, decisionColumns, byRisk, module, context, limit, decisionFrom);
}

QList<WorkDecisionRecord> fetchPendingWorkDecisions(LocalDB& db, int limit)
{
    return guardedRows(db, decisionTable,
        decisionColumns + QStringLiteral("WHERE status='proposed'\n") + byRisk + QStringLiteral("\nLIMIT ?;"),
        { limit }, decisionFrom);
}

std::optional<WorkDecisionRecord> fetchWorkDecision(LocalDB& db, const QString& id)
{
    const auto found
        = guardedRows(db, decisionTable, decisionColumns + QStringLiteral("WHERE id=?;"), { id }, decisionFrom);
    return found.isEmpty() ? std::nullopt : std::optional(found.first());
}

QList<WorkEvidenceRecord> fetchWorkEvidence(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, QStringLiteral("work_evidence"),
        QStringLiteral("SELECT id, COALESCE(context_id,''), module, kind, title, source, uri, summary, created_at\n"
                       "FROM work_evidence\n"),
        QStringLiteral("ORDER BY created_at DESC"), module, context, limit, [](const SqlRow& row) {
            return WorkEvidenceRecord { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5),
                row.text(6), row.text(7), row.text(8) };
        });
}

QList<WorkMessageRecord> fetchWorkMessages(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, QStringLiteral("work_message"),
        QStringLiteral("SELECT id, COALESCE(context_id,''), module, speaker, role, kind, body, status, created_at\n"
                       "FROM work_message\n"),
        QStringLiteral("ORDER BY created_at ASC"), module, context, limit, [](const SqlRow& row) {
            return WorkMessageRecord { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5),
                row.text(6), row.text(7), row.text(8) };
        });
}

QList<WorkSessionRecord> fetchWorkSessions(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, QStringLiteral("work_session"),
        QStringLiteral("SELECT id, COALESCE(context_id,''), module, purpose, owner, tool, status, heartbeat_at\n"
                       "FROM work_session\n"),
        lastChangedFirst, module, context, limit, [](const SqlRow& row) {
            return WorkSessionRecord { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5),
                row.text(6), row.text(7) };
        });
}

QList<WorkAgentRecord> fetchWorkAgents(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, agentTable, agentColumns, lastChangedFirst, module, context, limit, agentFrom);
}

QList<WorkAgentRecord> fetchAgentRoster(LocalDB& db, int limit)
{
    return guardedRows(db, agentTable,
        agentColumns + QStringLiteral("ORDER BY (status IN ('live','running')) DESC, heartbeat_at DESC\nLIMIT ?;"),
        { limit }, agentFrom);
}

QList<WorkMemoryRecord> fetchWorkMemory(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, QStringLiteral("work_memory"),
        QStringLiteral("SELECT id, COALESCE(context_id,''), module, kind, body, source, confidence, status, owner, "
                       "updated_at\nFROM work_memory\n"),
        QStringLiteral("ORDER BY CASE status WHEN 'proposed' THEN 0 WHEN 'approved' THEN 1 ELSE 2 END, "
                       "updated_at DESC"),
        module, context, limit, [](const SqlRow& row) {
            return WorkMemoryRecord { row.text(0), row.text(1), row.text(2), row.text(3), row.text(4), row.text(5),
                row.text(6), row.text(7), row.text(8), row.text(9) };
        });
}

}
