#include "Work/LumoHub.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int flowsShown = 200;

}

LumoHub::LumoHub(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_shell(services, WorkConsoleConfig::lumo(),
          { { u"knowledge"_s, u"Knowledge"_s }, { u"agents"_s, u"Agents"_s }, { u"flows"_s, u"Flows"_s },
              { u"console"_s, u"Console"_s } },
          this)
    , m_knowledge(services.db, services.scheduler, this)
    , m_agents(services, WorkConsoleConfig::lumo(), *m_shell.shells(), this)
{
    m_agents.setScope({}, true);
    connect(&m_shell, &WorkModuleShell::refreshed, this, &LumoHub::readPlaces);
    connect(&m_shell, &WorkModuleShell::aged, &m_agents, &WorkAgents::reload);
    connect(&m_knowledge, &WorkDecisions::wrote, &m_shell, &WorkModuleShell::refresh);
}

void LumoHub::readPlaces()
{
    m_knowledge.reload();
    m_agents.reload();
    const DateWords words(m_at.db.nowMs());
    QList<WorkEvidenceSeed> flows;
    for (const WorkEvidenceRecord& row : fetchEvidenceOfKind(m_at.db, u"runbook"_s, flowsShown))
        flows.append(evidenceSeed(row, words));
    m_flows.assign(flows);
    m_shell.rail()->setPlaceCount(
        u"knowledge"_s, int(std::ranges::count(m_knowledge.memoryRows(), true, &WorkMemorySeed::waits)));
    m_shell.rail()->setPlaceCount(u"agents"_s, m_agents.silent());
    Q_EMIT changed();
}

QString LumoHub::knowledgeEmpty() const
{
    return u"Facts appear here when you or an agent propose them. Agents may use what you approve."_s;
}

QString LumoHub::flowsEmpty() const
{
    return u"Runbooks are notes on how to do something. Write one in a context with the action Runbook."_s;
}

bool LumoHub::propose(const QString& fact)
{
    if (fact.trimmed().isEmpty())
        return false;
    const bool saved = insertWorkMemory(m_at.db,
        { .module = u"lumo"_s,
            .context = std::nullopt,
            .kind = u"fact"_s,
            .body = fact.trimmed(),
            .source = u"lumo-hub"_s,
            .confidence = u"medium"_s,
            .owner = u"Oskel"_s })
                           .has_value();
    m_error = saved ? QString() : u"It was not saved: the database could not be written."_s;
    m_at.db.watch().tell(StoreSubject::Work);
    m_shell.refresh();
    return saved;
}

}
