#include "Dev/TerminalWorkspaceView.h"

#include "Foundation/Literals.h"
#include "Store/Work/WorkBoardQueries.h"
#include "Work/WorkRows.h"
#include "Work/WorkWords.h"

#include <algorithm>

namespace corvane {

namespace {

using Tab = DevWorkspaceTab;

struct TabWords {
    Tab tab;
    const char* id;
    const char* label;
};

constexpr std::array<TabWords, 9> workspaceTabs { { { Tab::Terminal, "terminal", "Terminal" },
    { Tab::Assistant, "assistant", "Assistant" }, { Tab::Browser, "browser", "Browser" }, { Tab::SRS, "srs", "SRS" },
    { Tab::Tasks, "tasks", "Tasks" }, { Tab::Team, "team", "Team" }, { Tab::Memory, "memory", "Memory" },
    { Tab::Server, "server", "Server" }, { Tab::Health, "health", "Health" } } };

}

TerminalWorkspaceView::TerminalWorkspaceView(const DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
    , m_refresh(
          desk.work.db, desk.work.scheduler, [this] { read(); }, [this] { read(); }, this)
    , m_rail(m_desk, this)
    , m_launcher(m_desk, this)
    , m_assistant(m_desk, this)
    , m_srs(m_desk, this)
    , m_tasks(m_desk, this)
    , m_shells(m_desk.terminals, m_desk.work.shells, devModule, this)
    , m_team(m_desk, m_shells, this)
    , m_memory(m_desk, this)
    , m_server(m_desk, m_shells, this)
    , m_health(m_desk, this)
    , m_create(m_desk.work.db, this)
{
    const auto readAgain = [this] {
        m_desk.madeContext();
        refresh();
    };
    connect(&m_rail, &DevRail::selected, this, &TerminalWorkspaceView::projectSelected);
    connect(m_rail.projects(), &OpsProjects::wrote, this, readAgain);
    connect(&m_tasks, &DevTasks::wrote, this, readAgain);
    connect(&m_team, &DevTeam::wrote, this, readAgain);
    connect(&m_memory, &DevMemory::wrote, this, readAgain);
    connect(&m_create, &WorkCreate::wrote, this, readAgain);
    connect(&m_create, &WorkCreate::askSaved, this, &TerminalWorkspaceView::askSaved);
    const auto showTerminals = [this] {
        setWorkspaceTab(Tab::Terminal);
    };
    connect(&m_launcher, &DevLauncher::launched, this, showTerminals);
    connect(&m_assistant, &DevAssistant::launched, this, showTerminals);
    connect(&m_shells, &WorkShells::brought, this, showTerminals);
    connect(&m_desk.browser, &BrowserView::wrote, this, [this, readAgain] {
        if (shown())
            readAgain();
    });
    connect(&m_desk.browser, &BrowserView::itemRequested, this, [this](const QString& id) {
        if (shown())
            showItem(id);
    });
    connect(m_desk.browser.history(), &BrowserHistory::playRequested, this, [this] {
        if (shown())
            setWorkspaceTab(Tab::Browser);
    });
    connect(m_desk.browser.issues(), &BrowserIssues::changed, this, &TerminalWorkspaceView::changed);
    connect(&m_desk.terminals, &TerminalsView::changed, this, &TerminalWorkspaceView::terminalsChanged);
}

void TerminalWorkspaceView::read()
{
    m_rail.reload();
}

void TerminalWorkspaceView::projectSelected()
{
    if (std::exchange(m_shownProject, m_desk.project.id) != m_desk.project.id)
        m_tasks.showProject();
    m_create.setPlace(
        { .module = devModule, .context = m_desk.place(), .slug = m_desk.project.slug }, u"project"_s, {});
    if (shown()) {
        m_desk.terminals.setPlace(m_desk.terminalPlace());
        m_desk.browser.setProject(m_desk.hasProject()
                ? BrowserProject { m_desk.project.id, m_desk.project.slug, m_desk.projectName(), m_desk.shownContext() }
                : BrowserProject {});
    }
    m_launcher.reload();
    m_tasks.reload();
    m_team.reload();
    readTab();
    Q_EMIT changed();
}

void TerminalWorkspaceView::readTab()
{
    switch (m_tab) {
    case Tab::Assistant:
        return m_assistant.reload();
    case Tab::SRS:
        return m_srs.reload();
    case Tab::Tasks:
        return m_tasks.reloadBoard();
    case Tab::Memory:
        return m_memory.reload();
    case Tab::Server:
        return m_server.reload();
    case Tab::Health:
        return m_health.reload();
    case Tab::Browser:
        return m_desk.browser.history()->reload();
    case Tab::Terminal:
    case Tab::Team:
        break;
    }
}

/// The tabs depend on which terminal is selected, not on its changing title.
void TerminalWorkspaceView::terminalsChanged()
{
    const bool sameCount = std::exchange(m_terminalCount, m_desk.terminals.count()) == m_desk.terminals.count();
    if (std::exchange(m_terminal, m_desk.terminals.current()) == m_desk.terminals.current() && sameCount)
        return;
    Q_EMIT m_tasks.changed();
    if (shown())
        readTab();
    Q_EMIT changed();
}

QList<TabItem> TerminalWorkspaceView::tabs() const
{
    QList<TabItem> items;
    for (const TabWords& words : workspaceTabs) {
        TabItem item { QLatin1StringView(words.id), QLatin1StringView(words.label) };
        if (words.tab == Tab::Terminal)
            item.count = m_desk.terminals.count();
        if (words.tab == Tab::Browser)
            item.count = m_desk.browser.issues()->count();
        if (words.tab == Tab::Team)
            item.count = m_desk.project.openAsks;
        items.append(item);
    }
    return items;
}

void TerminalWorkspaceView::setWorkspaceTab(DevWorkspaceTab tab)
{
    if (std::exchange(m_tab, tab) == tab)
        return;
    readTab();
    Q_EMIT changed();
}

QString TerminalWorkspaceView::tab() const
{
    return QLatin1StringView(std::ranges::find(workspaceTabs, m_tab, &TabWords::tab)->id);
}

void TerminalWorkspaceView::setTab(const QString& id)
{
    const auto found
        = std::ranges::find_if(workspaceTabs, [&](const TabWords& words) { return id == QLatin1StringView(words.id); });
    if (found != workspaceTabs.end())
        setWorkspaceTab(found->tab);
}

QList<Choice> TerminalWorkspaceView::facts() const
{
    QList<Choice> facts;
    const auto add = [&facts](const QString& subject, const QString& words) {
        if (!words.isEmpty())
            facts.append({ subject, words });
    };
    const OpsProjectRow& project = m_desk.project;
    if (m_desk.hasProject()) {
        add(u"Goal"_s, project.goal.isEmpty() ? u"Not set yet."_s : shownText(project.goal));
        add(u"Slug"_s, shownLine(project.slug));
        add(u"Status"_s, factLine({ shownLine(project.status), u"priority %1"_s.arg(project.priority) }));
        add(u"Folder"_s, shownLine(project.repoPath));
        add(u"Files for agents"_s, shownLine(project.controlDir));
        add(u"Runs on"_s, shownLine(hostWords(project.execHost)));
        add(u"Work context"_s, m_desk.context ? shownLine(m_desk.context->id) : u"created with its first row"_s);
    }
    add(u"Safety"_s, m_desk.console.safetyNote);
    return facts;
}

void TerminalWorkspaceView::openTerminal(const QString& label, const QString& command)
{
    m_desk.openTerminal(label, command);
    setWorkspaceTab(Tab::Terminal);
}

void TerminalWorkspaceView::openProject(const QString& id)
{
    m_rail.select(id);
    m_launcher.attachOrCreateLocalSession();
}

void TerminalWorkspaceView::showItem(const QString& id)
{
    setWorkspaceTab(Tab::Tasks);
    m_tasks.item()->open(id);
}

void TerminalWorkspaceView::askSaved(const OpsAskRow& ask, bool forLumo)
{
    if (!forLumo)
        return;
    OpsAsks& asks = *m_rail.projects()->asks();
    asks.beginAnswer(ask.id);
    asks.answerWithLumo();
}

}
