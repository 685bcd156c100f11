#include "Dev/DevHealth.h"

#include "Foundation/Literals.h"
#include "Platform/Desktop.h"
#include "Presentation/CountWords.h"
#include "Store/Core/LocalDB.h"
#include "Store/Work/WorkRecords.h"
#include "Terminals/DevProcessInspector.h"
#include "Terminals/TerminalsView.h"
#include "Work/WorkAgents.h"
#include "Work/WorkRows.h"

#include <QFileInfo>
#include <algorithm>

namespace corvane {

namespace {

constexpr int agentsRead = 100;
constexpr int mostClaude = 2;

DevHealthLine line(const QString& id, const QString& title, const QString& value, const QString& detail, bool isWell)
{
    DevHealthLine line;
    line.id = id;
    line.title = title;
    line.value = value;
    line.detail = detail;
    line.tone = isWell ? u"good"_s : u"warn"_s;
    return line;
}

DevHealthLine processLine(const QStringList& processes, const QString& program)
{
    const int count = DevProcessInspector::count(processes, program);
    const bool isClaude = program == "claude"_L1;
    DevHealthLine shown = line(program, u"Local %1 processes"_s.arg(program), QString::number(count),
        isClaude ? u"Max 2 local processes."_s : QString(), !isClaude || count <= mostClaude);
    if (!isClaude)
        shown.tone.clear();
    return shown;
}

}

DevHealth::DevHealth(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
{
}

void DevHealth::reload()
{
    if (m_busy)
        return;
    m_busy = true;
    m_queue.run<QStringList>([] { return DevProcessInspector::snapshot(); },
        [this](const QStringList& processes) {
            m_busy = false;
            show(processes);
        });
    Q_EMIT changed();
}

void DevHealth::show(const QStringList& processes)
{
    QList<DevHealthLine> lines;
    if (processes.isEmpty())
        lines.append(
            line(u"processes"_s, u"Processes"_s, u"unknown"_s, u"The processes could not be listed."_s, false));
    else {
        for (const QString& program : { u"claude"_s, u"codex"_s, u"chromium"_s, u"node"_s })
            lines.append(processLine(processes, program));
    }
    int running = 0;
    for (const auto& session : m_desk.terminals.localSessions())
        running += session->runningCommand().isEmpty() ? 0 : 1;
    DevHealthLine terminals = line(u"terminals"_s, u"Terminals"_s, QString::number(m_desk.terminals.count()),
        running > 0 ? u"a program runs in %1"_s.arg(running) : QString(), true);
    terminals.tone.clear();
    lines.append(terminals);
    if (m_desk.hasProject()) {
        const QString path = m_desk.project.repoPath;
        const bool isHere = runsHere(m_desk.project, m_desk.desktop.hostName());
        const bool isThere = !path.isEmpty() && QFileInfo(m_desk.expanded(path)).isDir();
        if (isHere)
            lines.append(line(u"folder"_s, u"Project folder"_s, isThere ? u"there"_s : u"not there"_s,
                path.isEmpty() ? u"None is set."_s : path, isThere));
        lines.append(line(u"tabs"_s, u"Agents' terminals"_s, countWords(m_desk.project.liveTabs, u"live"_s, u"live"_s),
            m_desk.project.downTabs > 0 ? u"%1 down"_s.arg(m_desk.project.downTabs) : QString(),
            m_desk.project.downTabs == 0));
        lines.append(line(u"asks"_s, u"Open questions"_s, QString::number(m_desk.project.openAsks), {},
            m_desk.project.openAsks == 0));
        const QList<WorkAgentRecord> agents
            = fetchWorkAgents(m_desk.work.db, devModule, m_desk.shownContext(), agentsRead);
        const qint64 now = m_desk.work.db.nowMs();
        const auto silent
            = std::ranges::count_if(agents, [now](const WorkAgentRecord& agent) { return isSilent(agent, now); });
        lines.append(line(u"agents"_s, u"Agents"_s, QString::number(agents.size()),
            silent > 0 ? u"%1 silent"_s.arg(silent) : QString(), silent == 0));
    }
    m_lines.assign(lines);
    Q_EMIT changed();
}

}
