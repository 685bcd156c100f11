#include "Dev/DevServerAgent.h"

#include "Foundation/Literals.h"
#include "Presentation/ShellWord.h"

namespace corvane {

namespace {

const QString folder = u"cd ~/nimb/apps/nimb-local && "_s;

QString orElse(const QString& text, const QString& other)
{
    const QString typed = text.trimmed();
    return typed.isEmpty() ? other : typed;
}

}

DevServerAgent::DevServerAgent(DevDesk& desk, WorkShells& shells, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
    , m_shells(shells)
    , m_name(u"worker-01"_s)
    , m_role(u"implementer"_s)
{
}

QString DevServerAgent::taskHint() const
{
    return u"Work one bounded %1 task for %2, report evidence, then stop or ask."_s.arg(
        m_desk.console.area, m_desk.hasProject() ? m_desk.projectName() : m_desk.slug());
}

QString DevServerAgent::serverAgentCommand() const
{
    return folder + (m_dryRun ? u"CORVANE_AGENT_DRY_RUN=1 "_s : QString()) + u"scripts/corvane-server-agent.sh "_s
        + QStringList { typedShellWord(m_desk.slug()), typedShellWord(orElse(m_name, u"worker-01"_s)),
              typedShellWord(orElse(m_role, u"implementer"_s)), typedShellWord(orElse(m_task, taskHint())) }
              .join(u' ');
}

QString DevServerAgent::relayCommand() const
{
    return folder + u"node scripts/corvane-agent-relay.mjs"_s;
}

QString DevServerAgent::tunnelCommand() const
{
    return folder + u"scripts/corvane-agent-tunnel.sh"_s;
}

QList<Choice> DevServerAgent::rules() const
{
    return { { u"Reads"_s, u"ops_inbox, dev_work_list, one bounded unit"_s },
        { u"Writes"_s, u"ops_report, heartbeats, tasks, bugs, memory, decisions"_s },
        { u"The relay passes"_s, u"ops_* and dev_* only"_s },
        { u"Quota"_s, u"No API keys, no paid overflow, halt on quota risk."_s },
        { u"Claude on this computer"_s, u"Max 2 local processes."_s },
        { u"Approval"_s,
            u"Deploy, server mutation, credential access, billing, and destructive commands need approval."_s } };
}

void DevServerAgent::edit(QString& field, const QString& value)
{
    if (std::exchange(field, value) != value)
        Q_EMIT changed();
}

void DevServerAgent::setDryRun(bool on)
{
    if (std::exchange(m_dryRun, on) != on)
        Q_EMIT changed();
}

void DevServerAgent::showInTerminal()
{
    m_shells.show(u"Server agent"_s,
        u"\n# Start relay and tunnel first:\n# %1\n# %2\n# Review, then run:\n%3\n"_s.arg(
            relayCommand(), tunnelCommand(), serverAgentCommand()),
        u"~/nimb/apps/nimb-local"_s);
}

}
