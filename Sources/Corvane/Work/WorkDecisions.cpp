#include "Work/WorkDecisions.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkBoardQueries.h"
#include "Work/WorkRows.h"

namespace corvane {

namespace {

constexpr int rowsShown = 50;
constexpr int waitingShown = 200;
constexpr int memoryShown = 200;

QString statusWord(const QString& status)
{
    if (status == "proposed"_L1)
        return u"Waits for you"_s;
    if (status == "approved"_L1)
        return u"Approved"_s;
    return status == "rejected"_L1 ? u"Rejected"_s : shownLine(status);
}

QString riskWord(const QString& risk)
{
    if (risk == "money"_L1)
        return u"Money"_s;
    if (risk == "credential"_L1)
        return u"Credentials"_s;
    if (risk == "external"_L1)
        return u"Goes outside"_s;
    return risk == "high"_L1 ? u"Cannot be undone"_s : shownLine(risk);
}

}

WorkDecisionSeed decisionSeed(const WorkDecisionRecord& decision, const DateWords& words)
{
    WorkDecisionSeed seed;
    seed.id = decision.id;
    seed.title = shownLine(decision.title);
    seed.status = statusWord(decision.status);
    seed.risk = riskWord(decision.risk);
    seed.proposal = decision.proposal.isEmpty() ? u"Decision needs review."_s : shownText(decision.proposal);
    seed.rationale = shownText(decision.rationale);
    seed.facts
        = factLine({ seed.risk, decision.decidedBy.isEmpty() ? QString() : u"by "_s + shownLine(decision.decidedBy),
            shownTime(decision.updatedAt, words) });
    seed.waits = decision.status == "proposed"_L1;
    if (decision.risk == "money"_L1 || decision.risk == "credential"_L1 || decision.risk == "high"_L1)
        seed.question = u"Approve “%1”? Whoever proposed it can then carry it out."_s.arg(seed.title);
    return seed;
}

WorkMemorySeed memorySeed(const WorkMemoryRecord& memory, const DateWords& words)
{
    WorkMemorySeed seed;
    seed.id = memory.id;
    seed.kind = shownLine(memory.kind);
    seed.body = shownText(memory.body);
    seed.status = statusWord(memory.status);
    seed.source = shownLine(memory.source);
    seed.facts = factLine({ shownLine(memory.module), seed.kind,
        seed.source.isEmpty() ? QString() : u"from "_s + seed.source, shownTime(memory.updatedAt, words) });
    seed.waits = memory.status == "proposed"_L1;
    return seed;
}

WorkDecisions::WorkDecisions(LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_decisions(scheduler)
    , m_memory(scheduler)
{
}

void WorkDecisions::setScope(const QString& module, const WorkContext& context)
{
    m_module = module;
    m_context = context;
}

void WorkDecisions::reload()
{
    const WorkContextId context = m_context ? WorkContextId(m_context->id) : WorkContextId();
    const DateWords words(m_db.nowMs());
    QList<WorkDecisionSeed> decisions;
    m_seen.clear();
    const auto add = [&](const QList<WorkDecisionRecord>& records, bool waiting) {
        for (const WorkDecisionRecord& record : records) {
            if ((record.status == "proposed"_L1) != waiting)
                continue;
            m_seen.insert(record.id, record);
            decisions.append(decisionSeed(record, words));
        }
    };
    if (!m_module.isEmpty()) {
        // Pending ones come first, whatever their risk and however many were decided.
        add(fetchWaitingDecisions(m_db, m_module, context, waitingShown), true);
        add(fetchWorkDecisions(m_db, m_module, context, rowsShown), false);
    }
    QList<WorkMemorySeed> memory;
    m_seenMemory.clear();
    for (const WorkMemoryRecord& record : m_module.isEmpty() ? fetchMemoryOfAllModules(m_db, memoryShown)
                                                             : fetchWorkMemory(m_db, m_module, context, rowsShown)) {
        m_seenMemory.insert(record.id, record);
        memory.append(memorySeed(record, words));
    }
    m_decisions.assign(decisions);
    m_memory.assign(memory);
    Q_EMIT changed();
}

QString WorkDecisions::emptyText() const
{
    return u"Decisions appear when an agent proposes one, or when you create work that has a risk."_s;
}

WorkPlace WorkDecisions::placeOf(const QString& module, const QString& contextId) const
{
    return { .module = module, .context = contextId.isEmpty() ? WorkContext() : fetchWorkContext(m_db, contextId) };
}

void WorkDecisions::decide(const QString& id, bool approve)
{
    m_decisions.hold(id);
    decideSeen(m_seen.value(id), approve, setWorkDecisionStatus,
        u"It was not decided: it was changed or decided in the meantime. Please read it again."_s);
}

void WorkDecisions::decideMemory(const QString& id, bool approve)
{
    m_memory.hold(id);
    decideSeen(m_seenMemory.value(id), approve, setWorkMemoryStatus,
        u"It was not decided: the database could not be written."_s);
}

template <typename Record, typename SetStatus>
void WorkDecisions::decideSeen(const Record& record, bool approve, SetStatus setStatus, const QString& refusal)
{
    if (record.id.isEmpty())
        return;
    const WorkPlace place = placeOf(record.module, record.contextId);
    told(setStatus(m_db, place, record, approve ? u"approved"_s : u"rejected"_s), refusal);
}

void WorkDecisions::told(bool written, const QString& refusal)
{
    m_error = written ? QString() : refusal;
    reload();
    if (!written)
        return;
    m_db.watch().tell(StoreSubject::Work);
    m_db.watch().tell(StoreSubject::Approvals);
    Q_EMIT wrote();
}

}
