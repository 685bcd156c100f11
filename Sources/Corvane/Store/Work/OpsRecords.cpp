#include "Store/Work/OpsRecords.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Core/Table.h"

#include <QDateTime>
#include <algorithm>

namespace corvane {

namespace {

const Table<OpsProjectRow> projects("project p",
    {
        { "p.id", &OpsProjectRow::id },
        { "p.slug", &OpsProjectRow::slug },
        { "p.name", &OpsProjectRow::name },
        { "p.goal", &OpsProjectRow::goal, "''" },
        { "p.status", &OpsProjectRow::status },
        { "p.priority", &OpsProjectRow::priority, "3" },
        { "p.category", &OpsProjectRow::category, "''" },
        { "p.control_dir", &OpsProjectRow::controlDir, "''" },
        { "p.repo_path", &OpsProjectRow::repoPath, "''" },
        { "p.exec_host", &OpsProjectRow::execHost, "''" },
        { "p.updated_at", &OpsProjectRow::updatedAt },
    });

const Table<OpsTabRow> tabs("tab t",
    {
        { "t.id", &OpsTabRow::id },
        { "t.current_project_id", &OpsTabRow::projectId, "''" },
        { "p.slug", &OpsTabRow::projectSlug, "''" },
        { "t.name", &OpsTabRow::name },
        { "t.role", &OpsTabRow::role, "''" },
        { "t.status", &OpsTabRow::status },
        { "t.pid", &OpsTabRow::pid, "0" },
        { "t.cwd", &OpsTabRow::cwd, "''" },
        { "t.model", &OpsTabRow::model, "''" },
        { "t.interval_sec", &OpsTabRow::intervalSec, "600" },
        { "t.heartbeat_at", &OpsTabRow::heartbeatAt, "''" },
        { "t.current_task", &OpsTabRow::currentTask, "''" },
    });

const Table<OpsUpdateRow> updates(R"("update" u)",
    {
        { "u.id", &OpsUpdateRow::id },
        { "p.slug", &OpsUpdateRow::projectSlug, "''" },
        { "u.tab_id", &OpsUpdateRow::tabId, "''" },
        { "u.ts", &OpsUpdateRow::ts },
        { "u.kind", &OpsUpdateRow::kind },
        { "substr(u.body,1,4000)", &OpsUpdateRow::body },
    });

const Table<OpsAskRow> asks("ask a",
    {
        { "a.id", &OpsAskRow::id },
        { "a.project_id", &OpsAskRow::projectId, "''" },
        { "p.slug", &OpsAskRow::projectSlug, "''" },
        { "a.tab_id", &OpsAskRow::tabId, "''" },
        { "a.ts", &OpsAskRow::ts },
        { "a.question", &OpsAskRow::question },
        { "a.urgency", &OpsAskRow::urgency },
        { "a.status", &OpsAskRow::status },
        { "a.answer", &OpsAskRow::answer, "''" },
        { "a.answered_by", &OpsAskRow::answeredBy, "''" },
        { "a.answered_at", &OpsAskRow::answeredAt, "''" },
    });

const Table<OpsOrderRow> orders("message m",
    {
        { "m.id", &OpsOrderRow::id },
        { "t.name", &OpsOrderRow::tabName, "''" },
        { "m.ts", &OpsOrderRow::ts },
        { "substr(m.body,1,4000)", &OpsOrderRow::body },
        { "m.status", &OpsOrderRow::status },
    });

/// The rows of a table joined with their projects, if that table exists.
template <typename Row>
QList<Row> rowsWithProject(LocalDB& db, const Table<Row>& table, const QString& name, const QString& on,
    const QString& rest, const QList<SqlValue>& parameters)
{
    if (!db.tableExists(name))
        return {};
    const QString projectsOrNone = db.tableExists(u"project"_s) ? u"project"_s : u"(SELECT NULL AS id, NULL AS slug)"_s;
    return table.rows(db, u"LEFT JOIN %1 p ON p.id=%2\n"_s.arg(projectsOrNone, on) + rest, parameters);
}

void touchProject(LocalDB& db, const OpsProjectId& id, const QString& at)
{
    if (id && !id->isEmpty() && db.tableExists(u"project"_s))
        db.run(u"UPDATE project SET updated_at=? WHERE id=?;"_s, { at, *id });
}

int countAsks(LocalDB& db, const QString& which)
{
    return db.tableExists(u"ask"_s)
        ? db.scalar(u"SELECT COUNT(*) FROM ask WHERE %1;"_s.arg(which)).value_or(QString()).toInt()
        : 0;
}

const QString askOrder = uR"(ORDER BY CASE a.status WHEN 'open' THEN 0 ELSE 1 END,
         CASE a.urgency WHEN 'high' THEN 0 WHEN 'normal' THEN 1 ELSE 2 END,
         COALESCE(a.answered_at, a.ts) DESC
LIMIT ?;)"_s;

}

std::optional<qint64> parsedIsoTime(const QString& text)
{
    QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!time.isValid())
        time = QDateTime::fromString(text, Qt::ISODate);
    return time.isValid() ? std::optional(time.toMSecsSinceEpoch()) : std::nullopt;
}

Liveness opsTabLiveness(const QString& heartbeatAt, int intervalSec, qint64 nowMs)
{
    const auto heartbeat = parsedIsoTime(heartbeatAt);
    if (!heartbeat)
        return {};
    const qint64 stale = std::clamp<qint64>((nowMs - *heartbeat) / 1000, 0, std::numeric_limits<int>::max());
    return { int(stale), stale <= 2 * qint64(std::max(intervalSec, 30)) };
}

QList<OpsProjectRow> fetchOpsProjects(LocalDB& db)
{
    if (!db.tableExists(u"project"_s))
        return {};
    QList<OpsProjectRow> rows
        = projects.rows(db, u"ORDER BY COALESCE(p.priority,3) ASC, p.updated_at DESC LIMIT 500;"_s, {});
    QHash<QString, OpsProjectRow*> byId;
    for (OpsProjectRow& row : rows)
        byId.insert(row.id, &row);
    for (const OpsTabRow& tab : fetchOpsTabs(db, {})) {
        if (OpsProjectRow* const project = byId.value(tab.projectId))
            ++(tab.isLive ? project->liveTabs : project->downTabs);
    }
    if (db.tableExists(u"ask"_s)) {
        db.visitRows(u"SELECT project_id, COUNT(*) FROM ask WHERE status='open' GROUP BY project_id;"_s, {},
            [&](const SqlRow& row) {
                if (OpsProjectRow* const project = byId.value(row.text(0)))
                    project->openAsks = int(row.integer(1));
                return true;
            });
    }
    if (db.tableExists(u"update"_s)) {
        for (OpsProjectRow& row : rows) {
            const auto latest = db.firstRow(
                uR"(SELECT kind, substr(body,1,1000), ts FROM "update" WHERE project_id=? ORDER BY ts DESC LIMIT 1;)"_s,
                { row.id }, [](const SqlRow& at) { return QStringList { at.text(0), at.text(1), at.text(2) }; });
            if (latest) {
                row.latestKind = latest->at(0);
                row.latestBody = latest->at(1);
                row.latestAt = latest->at(2);
            }
        }
    }
    return rows;
}

std::optional<OpsProjectRow> upsertOpsProject(LocalDB& db, const OpsProjectRow& project)
{
    if (!db.tableExists(u"project"_s))
        return std::nullopt;
    const QString slug = project.slug.trimmed();
    const QString id = project.id.isEmpty() ? u"pj:"_s + slug : project.id;
    const QString now = isoTime(db.nowMs());
    const bool isThere = db.scalar(u"SELECT id FROM project WHERE id=? LIMIT 1;"_s, { id }).has_value();
    if (isThere && project.id.isEmpty())
        return std::nullopt;
    const QList<SqlValue> fields { slug, project.name.trimmed(), project.goal.trimmed(), project.status.trimmed(),
        project.priority, project.category.trimmed(), project.controlDir.trimmed(), project.repoPath.trimmed(),
        project.execHost.trimmed() };
    const bool saved = isThere
        ? db.run(uR"(UPDATE project
SET slug=?, name=?, goal=?, status=?, priority=?, category=?, control_dir=?, repo_path=?, exec_host=?, updated_at=?
WHERE id=?;)"_s,
              fields + QList<SqlValue> { now, id })
        : db.run(
              uR"(INSERT INTO project(slug, name, goal, status, priority, category, control_dir, repo_path, exec_host,
  created_at, updated_at, id)
VALUES(?,?,?,?,?,?,?,?,?,?,?,?);)"_s,
              fields + QList<SqlValue> { now, now, id });
    return saved ? projects.first(db, u"WHERE p.id=? LIMIT 1;"_s, { id }) : std::nullopt;
}

QList<OpsTabRow> fetchOpsTabs(LocalDB& db, const OpsProjectId& project)
{
    QList<OpsTabRow> rows = rowsWithProject(db, tabs, u"tab"_s, u"t.current_project_id"_s,
        u"WHERE (? IS NULL OR t.current_project_id=?)\nORDER BY t.created_at DESC LIMIT 1000;"_s, { project, project });
    for (OpsTabRow& row : rows) {
        const Liveness liveness = opsTabLiveness(row.heartbeatAt, row.intervalSec, db.nowMs());
        row.staleSec = liveness.staleSec;
        row.isLive = liveness.isLive;
    }
    return rows;
}

QList<OpsUpdateRow> fetchOpsUpdates(LocalDB& db, const OpsProjectId& project, int limit)
{
    return rowsWithProject(db, updates, u"update"_s, u"u.project_id"_s,
        u"WHERE (? IS NULL OR u.project_id=?)\nORDER BY u.ts DESC\nLIMIT ?;"_s, { project, project, limit });
}

QList<OpsAskRow> fetchOpsAsks(LocalDB& db, const OpsProjectId& project, AnsweredAsks answered, int limit)
{
    return rowsWithProject(db, asks, u"ask"_s, u"a.project_id"_s,
        u"WHERE (? IS NULL OR a.project_id=?) AND (?=1 OR a.status='open')\n"_s + askOrder,
        { project, project, answered == AnsweredAsks::Include ? 1 : 0, limit });
}

std::optional<OpsAskRow> fetchOpsAsk(LocalDB& db, const QString& id)
{
    const QList<OpsAskRow> found = rowsWithProject(db, asks, u"ask"_s, u"a.project_id"_s, u"WHERE a.id=?;"_s, { id });
    return found.isEmpty() ? std::nullopt : std::optional(found.first());
}

int openAsks(LocalDB& db)
{
    return countAsks(db, u"status='open'"_s);
}

int openUrgentAsks(LocalDB& db)
{
    return countAsks(db, u"status='open' AND urgency='high'"_s);
}

std::optional<OpsAskRow> createOpsAsk(LocalDB& db, const NewOpsAsk& ask)
{
    const QString question = ask.question.trimmed();
    if (question.isEmpty() || !db.tableExists(u"ask"_s))
        return std::nullopt;
    OpsProjectId project = ask.project;
    if (!project && db.tableExists(u"project"_s))
        project = db.scalar(u"SELECT id FROM project WHERE slug=? LIMIT 1;"_s, { ask.projectSlug });
    const QString id = u"ask:native:"_s + uuidText();
    const QString now = isoTime(db.nowMs());
    if (!db.run(
            u"INSERT INTO ask(id, project_id, tab_id, ts, question, urgency, status)\nVALUES(?,?,?,?,?,?,'open');"_s,
            { id, project, ask.tab, now, question, ask.urgency }))
        return std::nullopt;
    touchProject(db, project, now);
    return fetchOpsAsk(db, id);
}

std::optional<OpsAskRow> answerOpsAsk(LocalDB& db, const QString& id, const QString& answer, const QString& answeredBy)
{
    const QString now = isoTime(db.nowMs());
    if (answer.trimmed().isEmpty() || !db.tableExists(u"ask"_s)
        || db.changedRows(u"UPDATE ask SET status='answered', answer=?, answered_by=?, answered_at=? WHERE id=?;"_s,
               { answer.trimmed(), answeredBy, now, id })
            != 1)
        return std::nullopt;
    touchProject(db, db.scalar(u"SELECT COALESCE(project_id,'') FROM ask WHERE id=?;"_s, { id }), now);
    return fetchOpsAsk(db, id);
}

bool createOpsOrder(LocalDB& db, const QString& projectId, const QString& targetTabId, const QString& body,
    const std::optional<QString>& fromId)
{
    if (body.trimmed().isEmpty() || !db.tableExists(u"message"_s))
        return false;
    const QString id = u"msg:native:"_s + uuidText();
    const QString now = isoTime(db.nowMs());
    if (!db.run(u"INSERT INTO message(id, from_tab_id, to_tab_id, project_id, ts, body, status)\n"
                "VALUES(?,?,?,?,?,?,'pending');"_s,
            { id, fromId, targetTabId, projectId, now, body.trimmed() }))
        return false;
    touchProject(db, projectId, now);
    return db.scalar(u"SELECT id FROM message WHERE id=? LIMIT 1;"_s, { id }).has_value();
}

QList<OpsOrderRow> fetchOpsOrders(LocalDB& db, const QString& projectId, int limit)
{
    if (!db.tableExists(u"message"_s) || !db.tableExists(u"tab"_s))
        return {};
    return orders.rows(db,
        u"LEFT JOIN tab t ON t.id=m.to_tab_id\nWHERE m.project_id=?\nORDER BY m.ts DESC, m.rowid DESC\nLIMIT ?;"_s,
        { projectId, limit });
}

}
