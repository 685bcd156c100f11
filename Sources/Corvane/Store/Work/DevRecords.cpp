#include "Store/Work/DevRecords.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Core/Transaction.h"

namespace corvane {

namespace {

const Table<DevSRSRow> srs("dev_srs",
    {
        { "project_id", &DevSRSRow::projectId },
        { "overview", &DevSRSRow::overview },
        { "users", &DevSRSRow::users },
        { "requirements", &DevSRSRow::requirements },
        { "modules", &DevSRSRow::modules },
        { "flows", &DevSRSRow::flows },
        { "acceptance", &DevSRSRow::acceptance },
        { "constraints", &DevSRSRow::constraints },
        { "open_questions", &DevSRSRow::openQuestions },
        { "updated_at", &DevSRSRow::updatedAt },
    });

const char* const keepWhatAPersonFilledIn = R"(
ON CONFLICT(project_id) DO UPDATE SET overview=excluded.overview, requirements=excluded.requirements,
  modules=excluded.modules, acceptance=excluded.acceptance, updated_at=excluded.updated_at)";

const char* const replaceAll = R"(
ON CONFLICT(project_id) DO UPDATE SET overview=excluded.overview, users=excluded.users,
  requirements=excluded.requirements, modules=excluded.modules, flows=excluded.flows, acceptance=excluded.acceptance,
  constraints=excluded.constraints, open_questions=excluded.open_questions, updated_at=excluded.updated_at)";

}

std::optional<DevSRSRow> fetchDevSRS(LocalDB& db, const QString& projectId)
{
    return db.tableExists(u"dev_srs"_s) ? srs.first(db, u"WHERE project_id=? LIMIT 1;"_s, { projectId }) : std::nullopt;
}

std::optional<DevSRSRow> seedDevSRS(LocalDB& db, const OpsProjectRow& project)
{
    if (project.id.isEmpty() || !db.tableExists(u"dev_srs"_s))
        return std::nullopt;
    if (const auto there = fetchDevSRS(db, project.id))
        return there;
    DevSRSRow row;
    row.projectId = project.id;
    row.overview = (project.name.isEmpty() ? project.slug : project.name) + u" development workspace."_s;
    row.requirements = u"Define product requirements, critical flows, constraints, and acceptance criteria."_s;
    row.modules = u"Terminal workspace\nBrowser QA\nTasks and bugs\nTeam sessions\nShared memory\nHealth"_s;
    row.acceptance = u"Each change has an owner, evidence, and verification path."_s;
    row.updatedAt = isoTime(db.nowMs());
    if (!srs.insert(db, row, {}, keepWhatAPersonFilledIn))
        return std::nullopt;
    return fetchDevSRS(db, project.id);
}

DevSRSSaved saveDevSRS(LocalDB& db, const DevSRSRow& seen, const DevSRSRow& wanted)
{
    Transaction transaction(db);
    if (!transaction.begun() || !db.tableExists(u"dev_srs"_s))
        return DevSRSSaved::Failed;
    DevSRSRow none;
    none.projectId = seen.projectId;
    if (fetchDevSRS(db, seen.projectId).value_or(none) != seen)
        return DevSRSSaved::Changed;
    DevSRSRow row = wanted;
    row.updatedAt = isoTime(db.nowMs());
    return srs.insert(db, row, {}, replaceAll) && transaction.commit() ? DevSRSSaved::Saved : DevSRSSaved::Failed;
}

}
