#include "Store/Work/WorkRecords.h"

#include "Foundation/Literals.h"
#include "Store/Work/WorkTables.h"

#include <algorithm>

namespace corvane {

namespace {

const QString byApproval
    = u"ORDER BY CASE status WHEN 'proposed' THEN 0 WHEN 'approved' THEN 1 ELSE 2 END, updated_at DESC\nLIMIT ?;"_s;
const QString lastChangedFirst = u"ORDER BY updated_at DESC\nLIMIT ?;"_s;

/// All lists here: rows of a table that may not exist.
template <typename Row>
QList<Row> guardedRows(LocalDB& db, const Table<Row>& table, const QString& rest, const QList<SqlValue>& parameters)
{
    return db.tableExists(table.name()) ? table.rows(db, rest, parameters) : QList<Row>();
}

/// The rows of a module, in one of its contexts or in all.
template <typename Row>
QList<Row> moduleRows(LocalDB& db, const Table<Row>& table, const QString& order, const QString& module,
    const WorkContextId& context, int limit)
{
    // Two statements, since only a plain comparison uses the index for one context.
    return context ? guardedRows(db, table, u"WHERE module=? AND context_id=?\n"_s + order, { module, *context, limit })
                   : guardedRows(db, table, u"WHERE module=?\n"_s + order, { module, limit });
}

/// A join that counts a context's rows in another table as `{alias}.n`; 0 if that table is missing.
QString joinedCount(LocalDB& db, const QString& alias, const QString& table, const QString& which)
{
    const QString counted = db.tableExists(table)
        ? u"SELECT context_id, COUNT(*) AS n FROM %1 WHERE %2 GROUP BY context_id"_s.arg(table, which)
        : u"SELECT NULL AS context_id, 0 AS n"_s;
    return u"LEFT JOIN (%1) %2 ON %2.context_id=c.id\n"_s.arg(counted, alias);
}

}

namespace {

QString contextCounts(LocalDB& db)
{
    const QString live = u"status IN ('running','live')"_s;
    return joinedCount(db, u"i"_s, u"work_item"_s, u"status IS NOT 'done'"_s)
        + joinedCount(db, u"s"_s, u"work_session"_s, live) + joinedCount(db, u"a"_s, u"work_agent"_s, live);
}

template <typename Row> std::optional<Row> rowWithId(LocalDB& db, const Table<Row>& table, const QString& id)
{
    return db.tableExists(table.name()) ? table.first(db, u"WHERE id=?;"_s, { id }) : std::nullopt;
}

}

QList<WorkContextRow> fetchWorkContexts(LocalDB& db, const QString& module, int limit)
{
    return guardedRows(db, workContexts,
        contextCounts(db) + u"WHERE c.module=?\nORDER BY c.updated_at DESC\nLIMIT ?;"_s, { module, limit });
}

std::optional<WorkContextRow> fetchWorkContext(LocalDB& db, const QString& module, const QString& slug)
{
    return db.tableExists(workContexts.name())
        ? workContexts.first(db, contextCounts(db) + u"WHERE c.module=? AND c.slug=?;"_s, { module, slug })
        : std::nullopt;
}

std::optional<WorkContextRow> fetchWorkContext(LocalDB& db, const QString& id)
{
    return db.tableExists(workContexts.name()) ? workContexts.first(db, contextCounts(db) + u"WHERE c.id=?;"_s, { id })
                                               : std::nullopt;
}

std::optional<WorkItemRecord> fetchWorkItem(LocalDB& db, const QString& id)
{
    return rowWithId(db, workItems, id);
}

QList<WorkItemRecord> fetchWorkItems(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workItems,
        u"ORDER BY CASE priority WHEN 'high' THEN 0 WHEN 'normal' THEN 1 ELSE 2 END, updated_at DESC\nLIMIT ?;"_s,
        module, context, limit);
}

QList<WorkDecisionRecord> fetchWorkDecisions(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workDecisions, byRisk, module, context, limit);
}

QList<WorkDecisionRecord> fetchPendingWorkDecisions(LocalDB& db, int limit)
{
    return guardedRows(db, workDecisions, u"WHERE status='proposed'\n"_s + byRisk, { limit });
}

std::optional<WorkDecisionRecord> fetchWorkDecision(LocalDB& db, const QString& id)
{
    return rowWithId(db, workDecisions, id);
}

QList<WorkEvidenceRecord> fetchWorkEvidence(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workEvidence, u"ORDER BY created_at DESC\nLIMIT ?;"_s, module, context, limit);
}

QList<WorkMessageRecord> fetchWorkMessages(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workMessages, u"ORDER BY created_at ASC\nLIMIT ?;"_s, module, context, limit);
}

QList<WorkMessageRecord> fetchNewestWorkMessages(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    QList<WorkMessageRecord> newest
        = moduleRows(db, workMessages, u"ORDER BY created_at DESC, rowid DESC\nLIMIT ?;"_s, module, context, limit);
    std::ranges::reverse(newest);
    return newest;
}

QList<WorkSessionRecord> fetchWorkSessions(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workSessions, lastChangedFirst, module, context, limit);
}

QList<WorkAgentRecord> fetchWorkAgents(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workAgents, lastChangedFirst, module, context, limit);
}

QList<WorkAgentRecord> fetchAgentRoster(LocalDB& db, int limit)
{
    return guardedRows(
        db, workAgents, u"ORDER BY (status IN ('live','running')) DESC, heartbeat_at DESC\nLIMIT ?;"_s, { limit });
}

QList<WorkMemoryRecord> fetchWorkMemory(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    return moduleRows(db, workMemory, byApproval, module, context, limit);
}

QList<WorkMemoryRecord> fetchMemoryOfAllModules(LocalDB& db, int limit)
{
    return guardedRows(db, workMemory, byApproval, { limit });
}

QList<WorkEvidenceRecord> fetchEvidenceOfKind(LocalDB& db, const QString& kind, int limit)
{
    return guardedRows(db, workEvidence, u"WHERE kind=?\nORDER BY created_at DESC\nLIMIT ?;"_s, { kind, limit });
}

QList<WorkSessionRecord> fetchSessionsOfAllModules(LocalDB& db, int limit)
{
    return guardedRows(db, workSessions, lastChangedFirst, { limit });
}

}
