#include "Work/WorkAgents.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Presentation/ShellWord.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/OpsRecords.h"
#include "Store/Work/WorkWrites.h"
#include "Work/WorkCreateFlows.h"
#include "Work/WorkRows.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int rowsShown = 50;
constexpr int rosterShown = 200;
constexpr qint64 silentAfterMs = 2 * 600 * 1000;
const QString serverTool = u"codex-server"_s;

bool saysItWorks(const QString& status)
{
    return status == "running"_L1 || status == "live"_L1;
}

/// Lower case, with "-" in place of what separates words.
QString nameWord(const QString& name)
{
    QString word;
    for (const QChar letter : name.toLower())
        word += letter.isLetterOrNumber() ? letter : QChar(u'-');
    return word;
}

}

bool isSilent(const WorkAgentRecord& agent, qint64 nowMs)
{
    if (!saysItWorks(agent.status))
        return false;
    const auto heartbeat = parsedIsoTime(agent.heartbeatAt);
    return !heartbeat || nowMs - *heartbeat > silentAfterMs;
}

WorkAgentSeed agentSeed(const WorkAgentRecord& agent, const QList<WorkSessionRecord>& sessions,
    const QString& lastWords, const DateWords& words, qint64 nowMs)
{
    WorkAgentSeed seed;
    seed.id = agent.id;
    seed.name = shownLine(agent.name);
    seed.tool = factLine({ shownLine(agent.tool), shownLine(agent.role) });
    seed.task = shownLine(agent.currentTask);
    const auto heartbeat = parsedIsoTime(agent.heartbeatAt);
    seed.heartbeat = heartbeat ? u"last seen "_s + words.ago(*heartbeat) : u"never seen"_s;
    if (isSilent(agent, nowMs)) {
        seed.state = u"Silent"_s;
        seed.tone = u"bad"_s;
    } else if (saysItWorks(agent.status)) {
        seed.state = u"Working"_s;
        seed.tone = u"good"_s;
    } else {
        seed.state = agent.status == "ready"_L1 ? u"Ready"_s : shownLine(agent.status);
    }
    const auto session = std::ranges::find_if(sessions, [&](const WorkSessionRecord& each) {
        return each.owner == agent.name && each.module == agent.module && each.contextId == agent.contextId;
    });
    if (session != sessions.end() && session->purpose != agent.currentTask)
        seed.session = u"Session: "_s + shownLine(session->purpose);
    seed.lastWords = shownLine(lastWords);
    seed.place = shownLine(agent.module);
    seed.aloud = QStringList { seed.name, seed.state, seed.heartbeat, seed.task }.join(u", "_s);
    return seed;
}

AgentLaunchPlan agentLaunchPlan(
    const WorkConsoleConfig& config, const WorkContextRow& context, const QString& agentName)
{
    AgentLaunchPlan plan { u"Worker"_s, u"worker"_s,
        u"Do one bounded work unit for %1, attach evidence, post Terminal Chat update, then stop or ask."_s.arg(
            context.title) };
    if (config.module == "gtm"_L1) {
        plan.name = u"Researcher"_s;
        plan.role = u"research"_s;
    } else if (config.module == "cx"_L1) {
        plan.name = u"QA Agent"_s;
        plan.role = u"qa"_s;
    } else if (config.module == "ops"_L1) {
        plan.name = u"Ops Agent"_s;
        const QString text = QStringList { context.kind, context.slug, context.title, context.subtitle }.join(u' ');
        if (text.contains("invoice"_L1, Qt::CaseInsensitive))
            plan.role = u"ops"_s;
    }
    if (!agentName.trimmed().isEmpty())
        plan.name = agentName.trimmed();
    return plan;
}

QString workAgentLaunchCommand(const QString& module, const WorkContextRow& context, const AgentLaunchPlan& plan)
{
    return QStringList { typedShellWord(u"scripts/corvane-work-agent.sh"_s), typedShellWord(module.toLower()),
        typedShellWord(context.id), typedShellWord(nameWord(plan.name)), typedShellWord(plan.role),
        typedShellWord(plan.task) }
        .join(u' ');
}

QString launchBanner(
    const WorkConsoleConfig& config, const WorkContextRow& context, const QString& agentName, const QString& command)
{
    return u"\n# Prepared Corvane work agent\n# Module: %1\n# Context: %2\n# Agent: %3\n"
           "# Start relay+tunnel first if launching on server.\n# Review, then run:\n%4\n"_s.arg(
               config.module, shownLine(context.title), shownLine(agentName), command);
}

WorkAgents::WorkAgents(
    const WorkServices& services, const WorkConsoleConfig& config, WorkShells& shells, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_config(config)
    , m_shells(shells)
{
}

void WorkAgents::setScope(const WorkContext& context, bool everyModule)
{
    if (context.has_value() != m_context.has_value() || (context && context->id != m_context->id))
        dismissLaunch();
    m_context = context;
    m_everyModule = everyModule;
}

void WorkAgents::reload()
{
    const WorkContextId context = m_context ? WorkContextId(m_context->id) : WorkContextId();
    const QList<WorkAgentRecord> agents = m_everyModule ? fetchAgentRoster(m_at.db, rosterShown)
                                                        : fetchWorkAgents(m_at.db, m_config.module, context, rowsShown);
    const QList<WorkSessionRecord> sessions = m_everyModule
        ? fetchSessionsOfAllModules(m_at.db, rosterShown)
        : fetchWorkSessions(m_at.db, m_config.module, context, rowsShown);
    const qint64 now = m_at.db.nowMs();
    const DateWords words(now);
    QList<WorkAgentSeed> rows;
    m_silent = 0;
    for (const WorkAgentRecord& agent : agents) {
        rows.append(agentSeed(agent, sessions, lastWordsOf(m_at.db, agent.module, agent.name), words, now));
        m_silent += isSilent(agent, now) ? 1 : 0;
    }
    m_agents.assign(rows);
    Q_EMIT changed();
}

void WorkAgents::launch(const QString& agentName)
{
    if (!m_context)
        return;
    m_error.clear();
    const AgentLaunchPlan plan = agentLaunchPlan(m_config, *m_context, agentName);
    const WorkPlace place { .module = m_config.module, .context = m_context };
    const auto session = insertWorkSession(m_at.db,
        { .module = m_config.module,
            .context = m_context->id,
            .purpose = plan.task,
            .owner = plan.name,
            .tool = serverTool,
            .status = u"ready"_s });
    const auto agent = session ? upsertWorkAgent(m_at.db,
                                     { .module = m_config.module,
                                         .context = m_context->id,
                                         .name = plan.name,
                                         .tool = serverTool,
                                         .role = plan.role,
                                         .status = u"ready"_s,
                                         .currentTask = plan.task,
                                         .sessionId = session->id })
                               : std::nullopt;
    if (!agent) {
        m_error = u"The agent could not be saved: the database could not be written."_s;
        return Q_EMIT changed();
    }
    m_command = workAgentLaunchCommand(m_config.module, *m_context, plan);
    m_banner = launchBanner(m_config, *m_context, plan.name, m_command);
    postStatus(m_at.db, place,
        u"Prepared %1 for %2. Opened a launch shell with the server-agent command."_s.arg(plan.name, m_context->title),
        u"message"_s);
    m_shells.show(u"Launch "_s + shownLine(plan.name), m_banner, u"~/nimb/apps/nimb-local"_s);
    reload();
    m_at.db.watch().tell(StoreSubject::Work);
    Q_EMIT wrote();
}

void WorkAgents::createLocalShell()
{
    m_shells.show({},
        u"\n# %1 context: %2\n# Risky actions require approval.\n\n"_s.arg(
            m_config.module, m_context ? shownLine(m_context->title) : QString()),
        u"~/nimb"_s);
}

void WorkAgents::dismissLaunch()
{
    m_banner.clear();
    m_command.clear();
    m_error.clear();
    Q_EMIT changed();
}

QString WorkAgents::emptyText() const
{
    return m_context ? u"No agent is working here. Prepare one, review its command, and run it yourself."_s
                     : u"Agents appear when one starts a session."_s;
}

QList<Choice> WorkAgents::safety() const
{
    return { { u"External send"_s, u"Draft or approval-gated only"_s },
        { u"Credentials"_s, u"Never exposed or moved"_s }, { u"Billing"_s, u"No API keys, no paid overflow"_s },
        { u"Risk"_s, u"Deploy, money, server mutation, and destructive commands require explicit approval"_s } };
}

}
