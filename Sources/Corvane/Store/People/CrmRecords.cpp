#include "Store/People/CrmRecords.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/CrmQueue.h"

#include <cmath>
#include <limits>

namespace corvane {

namespace {

const QString origin = u"native-ui"_s;
const QString create = u"create"_s;
const QString unstaged = u"Unstaged"_s;

const Table<CRMTaskRow> tasks("crm_task",
    {
        { "id", &CRMTaskRow::id },
        { "title", &CRMTaskRow::title },
        { "due", &CRMTaskRow::due, "''" },
        { "priority", &CRMTaskRow::priority, "''" },
        { "status", &CRMTaskRow::status },
        { "updated_at", &CRMTaskRow::updatedAt },
    });

const Table<NewTask> newTasks("crm_task",
    {
        { "id" },
        { "workspace_id" },
        { "title", &NewTask::title },
        { "due", &NewTask::due },
        { "priority", &NewTask::priority },
        { "status", &NewTask::status },
        { "updated_at" },
    });

const Table<NewTask> newTasksOfContact("crm_task",
    {
        { "id" },
        { "workspace_id" },
        { "contact_id" },
        { "title", &NewTask::title },
        { "due", &NewTask::due },
        { "priority", &NewTask::priority },
        { "status", &NewTask::status },
        { "updated_at" },
    });

const Table<CRMDealRow> deals("crm_deal",
    {
        { "id", &CRMDealRow::id },
        { "name", &CRMDealRow::name },
        { "stage", &CRMDealRow::stage, "''" },
        { "value", &CRMDealRow::value, "''" },
        { "company", &CRMDealRow::company, "''" },
        { "updated_at", &CRMDealRow::updatedAt },
    });

const Table<NewDeal> newDeals("crm_deal",
    {
        { "id" },
        { "workspace_id" },
        { "contact_id" },
        { "name", &NewDeal::name },
        { "company", &NewDeal::company },
        { "stage", &NewDeal::stage },
        { "value", &NewDeal::value },
        { "close_date", &NewDeal::closeDate },
        { "updated_at" },
    });

const Table<PipelineDeal> pipelineDeals("crm_deal",
    {
        { "name", &PipelineDeal::name },
        { "company", &PipelineDeal::company, "''" },
        { "stage", &PipelineDeal::stage, "''" },
        { "value", &PipelineDeal::value, "''" },
        { "close_date", &PipelineDeal::closeDate, "''" },
    });

/// A note's id contains its millisecond and contact; a second note in it takes the next free one.
QString freeNoteId(LocalDB& db, const QString& contactId)
{
    for (qint64 ms = db.nowMs();; ++ms) {
        const QString id = u"note:%1:"_s.arg(ms) + contactId;
        if (!db.scalar("SELECT 1 FROM contact_note WHERE id=? LIMIT 1;", { id }))
            return id;
    }
}

QJsonObject payloadOf(const NewTask& task)
{
    return { { u"title"_s, task.title }, { u"due"_s, task.due }, { u"priority"_s, task.priority },
        { u"status"_s, task.status } };
}

void recordStatus(LocalDB& db, const QString& taskId, const QString& status)
{
    recordCRMMutation(db, u"task"_s, taskId, u"update"_s, origin, { { u"status"_s, status } });
}

qint64 saturatedSum(qint64 a, qint64 b)
{
    qint64 sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<qint64>::max() : sum; // neither is negative
}

}

QList<NoteRow> fetchNotes(LocalDB& db, const QString& contactId)
{
    return db.rows("SELECT id, body, ts FROM contact_note WHERE contact_id=? AND deleted_at IS NULL ORDER BY ts DESC;",
        { contactId }, [](const SqlRow& row) { return NoteRow { row.text(0), row.text(1), row.integer(2) }; });
}

std::optional<QString> addNote(LocalDB& db, const QString& contactId, const QString& body)
{
    const qint64 now = db.nowMs();
    const QString id = freeNoteId(db, contactId);
    const bool added = db.run(R"(INSERT INTO contact_note(id, workspace_id, contact_id, body, ts, updated_at)
VALUES(?,?,?,?,?,?);)",
        { id, activeWorkspaceId(db), contactId, body, now, now });
    if (!added)
        return std::nullopt;
    recordCRMMutation(db, u"contact_note"_s, id, create, origin,
        { { u"contact_id"_s, contactId }, { u"body"_s, body }, { u"ts"_s, now } });
    return id;
}

QList<CRMTaskRow> fetchContactTasks(LocalDB& db, const QString& contactId, DoneTasks done, int limit)
{
    return tasks.rows(db, R"(WHERE workspace_id=? AND deleted_at IS NULL AND contact_id=?
  AND (?=1 OR lower(status) NOT IN ('done','completed','closed'))
ORDER BY updated_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), contactId, done == DoneTasks::Include ? 1 : 0, limit });
}

std::optional<QString> insertCRMTask(LocalDB& db, const NewTask& task)
{
    const qint64 now = db.nowMs();
    const QString id = stampedId(u"tk"_s, now);
    if (!newTasks.insert(db, task, { { "id", id }, { "workspace_id", activeWorkspaceId(db) }, { "updated_at", now } }))
        return std::nullopt;
    recordCRMMutation(db, u"task"_s, id, create, origin, payloadOf(task));
    return id;
}

std::optional<QString> insertCRMTask(LocalDB& db, const QString& contactId, const NewTask& task)
{
    const qint64 now = db.nowMs();
    const QString id = stampedId(u"tk"_s, now);
    if (!newTasksOfContact.insert(db, task,
            { { "id", id }, { "workspace_id", activeWorkspaceId(db) }, { "contact_id", contactId },
                { "updated_at", now } }))
        return std::nullopt;
    QJsonObject payload = payloadOf(task);
    payload.insert(u"contact_id"_s, contactId);
    recordCRMMutation(db, u"task"_s, id, create, origin, payload);
    return id;
}

bool completeCRMTask(LocalDB& db, const QString& id)
{
    if (db.changedRows(
            "UPDATE crm_task SET status='Done', updated_at=? WHERE id=? AND deleted_at IS NULL;", { db.nowMs(), id })
        != 1)
        return false;
    recordStatus(db, id, u"Done"_s);
    return true;
}

bool reopenCRMTask(LocalDB& db, const QString& id, const QString& status)
{
    if (db.changedRows(
            "UPDATE crm_task SET status=?, updated_at=? WHERE id=? AND deleted_at IS NULL;", { status, db.nowMs(), id })
        != 1)
        return false;
    recordStatus(db, id, status);
    return true;
}

QList<CRMDealRow> fetchContactDeals(LocalDB& db, const QString& contactId, int limit)
{
    return deals.rows(db, R"(WHERE workspace_id=? AND deleted_at IS NULL AND contact_id=?
ORDER BY updated_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), contactId, limit });
}

std::optional<QString> insertCRMDeal(LocalDB& db, const QString& contactId, const NewDeal& deal)
{
    const qint64 now = db.nowMs();
    const QString id = stampedId(u"dl"_s, now);
    if (!newDeals.insert(db, deal,
            { { "id", id }, { "workspace_id", activeWorkspaceId(db) }, { "contact_id", contactId },
                { "updated_at", now } }))
        return std::nullopt;
    recordCRMMutation(db, u"deal"_s, id, create, origin,
        { { u"contact_id"_s, contactId }, { u"name"_s, deal.name }, { u"company"_s, deal.company },
            { u"stage"_s, deal.stage }, { u"value"_s, deal.value },
            { u"close_date"_s, deal.closeDate ? QJsonValue(*deal.closeDate) : QJsonValue() } });
    return id;
}

bool moveCRMDeal(LocalDB& db, const QString& id, const QString& stage)
{
    if (db.changedRows(
            "UPDATE crm_deal SET stage=?, updated_at=? WHERE id=? AND deleted_at IS NULL;", { stage, db.nowMs(), id })
        != 1)
        return false;
    recordCRMMutation(db, u"deal"_s, id, u"update"_s, origin, { { u"stage"_s, stage } });
    return true;
}

QList<PipelineDeal> fetchCRMDeals(LocalDB& db)
{
    return pipelineDeals.rows(
        db, "WHERE workspace_id=? AND deleted_at IS NULL ORDER BY updated_at DESC;", { activeWorkspaceId(db) });
}

QStringList pipelineStages()
{
    return { u"Prospecting"_s, u"Qualification"_s, u"Proposal"_s, u"Negotiation"_s, u"Closed Won"_s, u"Closed Lost"_s };
}

QList<CRMPipelineStageSummary> fetchCRMPipelineStageSummaries(LocalDB& db)
{
    QStringList order = pipelineStages() << unstaged;
    QHash<QString, CRMPipelineStageSummary> byStage;
    for (const PipelineDeal& deal : fetchCRMDeals(db)) {
        const QString stage = deal.stage.isEmpty() ? unstaged : deal.stage;
        if (!order.contains(stage))
            order.append(stage);
        CRMPipelineStageSummary& summary = byStage[stage];
        summary.stage = stage;
        ++summary.dealCount;
        summary.totalValue = saturatedSum(summary.totalValue, dealValue(deal.value));
    }
    QList<CRMPipelineStageSummary> summaries;
    for (const QString& stage : std::as_const(order)) {
        if (byStage.contains(stage))
            summaries.append(byStage.value(stage));
    }
    return summaries;
}

qint64 dealValue(const QString& text)
{
    const QString lower = text.toLower();
    const double multiplier = lower.contains(u'm') ? 1'000'000 : lower.contains(u'k') ? 1'000 : 1;
    QString number;
    for (const QChar character : lower) {
        if ((character >= u'0' && character <= u'9') || character == u'.')
            number += character;
    }
    const double value = std::trunc(number.toDouble() * multiplier); // 0 if it is no number
    constexpr double beyond = 9223372036854775808.0;
    return value < beyond ? static_cast<qint64>(value) : std::numeric_limits<qint64>::max();
}

}
