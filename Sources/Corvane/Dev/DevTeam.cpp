#include "Dev/DevTeam.h"

#include "Foundation/Literals.h"
#include "Store/Work/WorkWrites.h"
#include "Terminals/LumoTerminalSession.h"

namespace corvane {

namespace {

WorkConsoleConfig config()
{
    WorkConsoleConfig config = WorkConsoleConfig::lumo();
    config.module = devModule;
    return config;
}

QString nameOf(const QString& tool)
{
    if (tool == "codex"_L1)
        return u"Codex"_s;
    return tool == "claude"_L1 ? u"Claude"_s : u"Browser QA"_s;
}

}

DevTeam::DevTeam(DevDesk& desk, WorkShells& shells, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
    , m_agents(desk.work, config(), shells, this)
{
    connect(&m_agents, &WorkAgents::wrote, this, &DevTeam::wrote);
}

void DevTeam::reload()
{
    m_agents.setScope(m_desk.place());
    m_agents.reload();
    Q_EMIT changed();
}

QList<Choice> DevTeam::tools() const
{
    QList<Choice> choices;
    for (const QString& tool : { u"codex"_s, u"claude"_s, u"browser"_s })
        choices.append({ tool, nameOf(tool) });
    return choices;
}

void DevTeam::registerAgent(const QString& tool)
{
    const LumoTerminalSession* const session = m_desk.session();
    const auto saved = upsertWorkAgent(m_desk.work.db,
        { .module = devModule,
            .context = m_desk.madeContext(),
            .name = nameOf(tool),
            .tool = tool,
            .role = tool == "browser"_L1 ? u"qa"_s : u"worker"_s,
            .status = u"ready"_s,
            .currentTask = u"Ready for project work. Risky actions require approval."_s,
            .sessionId = session ? session->id() : QString() });
    m_error = saved ? QString() : u"Could not save the agent."_s;
    if (saved) {
        m_desk.told();
        Q_EMIT wrote();
    }
    Q_EMIT changed();
}

}
