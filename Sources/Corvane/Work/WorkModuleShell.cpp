#include "Work/WorkModuleShell.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Presentation/Downloads.h"
#include "Store/Core/StoreWatch.h"
#include "Work/WorkExport.h"
#include "Work/WorkWords.h"

#include <algorithm>

namespace corvane {

namespace {

using Tab = WorkConsoleTab;

constexpr int tasksShown = 50;

WorkItemFilter scopeOf(const QString& module, const WorkContext& context, Tab tab)
{
    WorkItemFilter scope { .module = module, .context = context ? WorkContextId(context->id) : WorkContextId() };
    if (tab == Tab::Tickets)
        scope.kindSigns = ticketSigns();
    if (tab == Tab::Handoffs)
        scope.kindSigns = { u"handoff"_s };
    if (tab == Tab::Projects && module == "cx"_L1) {
        scope.kindSigns = ticketSigns();
        scope.otherKinds = true;
    }
    return scope;
}

QString surfaceOf(Tab tab)
{
    switch (tab) {
    case Tab::Inbox:
        return u"inbox"_s;
    case Tab::TerminalChat:
        return u"chat"_s;
    case Tab::Agents:
        return u"agents"_s;
    case Tab::Approvals:
        return u"approvals"_s;
    case Tab::Evidence:
        return u"evidence"_s;
    case Tab::Timeline:
        return u"timeline"_s;
    default:
        return u"board"_s;
    }
}

}

WorkModuleShell::WorkModuleShell(
    const WorkServices& services, const WorkConsoleConfig& config, const QList<TabItem>& places, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_config(config)
    , m_tab(config.defaultTab)
    , m_refresh(
          services.db, services.scheduler, [this] { read(); }, [this] { age(); }, this)
    , m_rail(services.db, config, places, this)
    , m_header(services.db, config, this)
    , m_history(services.db, config.module, this)
    , m_board(services.db, services.scheduler, this)
    , m_item(services.db, this)
    , m_create(services.db, this)
    , m_chat(services, this)
    , m_decisions(services.db, services.scheduler, this)
    , m_shells(services.shells, config.module, this)
    , m_agents(services, config, m_shells, this)
{
    m_board.setEmptyWords(u"No work here yet"_s, u"Items appear when you create one, or when an agent does."_s);
    m_create.setPlace({ .module = m_config.module }, m_config.contextNoun, {});
    connect(&m_rail, &WorkRail::selected, this, &WorkModuleShell::showSelected);
    // The window changes the view only when its rows have been read.
    connect(this, &WorkModuleShell::changed, &m_rail, &WorkRail::changed);
    connect(this, &WorkModuleShell::changed, &m_header, &WorkHeader::changed);
    // What this screen wrote itself is shown at once.
    const auto readAgain = [this] {
        refresh();
    };
    connect(&m_board, &WorkBoard::wrote, this, readAgain);
    connect(&m_item, &WorkItemSheet::wrote, this, readAgain);
    connect(&m_create, &WorkCreate::wrote, this, readAgain);
    connect(&m_chat, &WorkTerminalChat::wrote, this, readAgain);
    connect(&m_decisions, &WorkDecisions::wrote, this, readAgain);
    connect(&m_agents, &WorkAgents::wrote, this, readAgain);
    connect(&m_create, &WorkCreate::contextSaved, &m_rail, &WorkRail::select);
    connect(&m_create, &WorkCreate::askSaved, this, [this](const OpsAskRow& ask, bool forLumo) {
        if (forLumo)
            m_chat.answerAsk(ask, m_create.placed().context);
    });
}

void WorkModuleShell::age()
{
    if (m_context)
        m_agents.reload();
    Q_EMIT aged();
}

void WorkModuleShell::read()
{
    m_rail.read();
    setContext(m_rail.context());
    m_create.setPlace({ .module = m_config.module,
                          .context = m_context,
                          .source = m_context ? u"corvane-ui"_s : m_config.placeSource },
        m_config.contextNoun, m_rail.everyContext());
    readSurface();
    Q_EMIT refreshed();
    Q_EMIT changed();
}

void WorkModuleShell::showSelected()
{
    m_item.close();
    m_notice.clear();
    setContext(m_rail.context()); // keeps the tab if this context has it
    refresh();
}

void WorkModuleShell::setContext(const WorkContext& context)
{
    const bool another = m_context.has_value() != context.has_value() || (context && m_context->id != context->id);
    const WorkLanes lanes = lanesOf(m_config, context);
    const bool otherLanes = lanes.names != lanesOf(m_config, m_context).names;
    m_context = context;
    if (!context || !visibleTabs(m_config, context).contains(m_tab))
        m_tab = contextDefaultTab(m_config, context);
    m_chat.setContext(m_config.module, m_context);
    m_history.setContext(m_context ? WorkContextId(m_context->id) : WorkContextId());
    m_decisions.setScope(m_config.module, m_context);
    m_agents.setScope(m_context);
    m_item.setLanes(lanes);
    if (another || otherLanes || m_board.laneCount() == 0)
        m_board.setScope(scopeOf(m_config.module, m_context, m_tab), lanes);
}

void WorkModuleShell::readSurface()
{
    const WorkContextId id = m_context ? WorkContextId(m_context->id) : WorkContextId();
    const DateWords words(m_at.db.nowMs());
    m_header.read(m_context);
    m_item.reload();
    const QString surface = this->surface();
    const QString& place = m_rail.place();
    if (surface == "board"_L1 && (place.isEmpty() || place == m_config.boardPlace))
        m_board.reload();
    if (!place.isEmpty())
        return; // a place shows none of what follows
    m_decisions.reload();
    m_agents.reload();
    if (surface == "chat"_L1 || surface == "inbox"_L1)
        m_chat.reload();
    m_history.readEvidence();
    QList<WorkItemSeed> tasks;
    const WorkItemFilter noTickets {
        .module = m_config.module, .context = id, .kindSigns = ticketSigns(), .otherKinds = true
    };
    for (const WorkItemRecord& row : fetchWorkItems(m_at.db, noTickets, WorkItems::Open, tasksShown))
        tasks.append(itemSeed(row, false, words));
    m_tasks.assign(tasks);
    if (surface == "timeline"_L1)
        m_history.readTimeline();
}

void WorkModuleShell::show(const QString& contextId, const QString& itemId, const QString& tab)
{
    if (contextId.isEmpty())
        m_rail.setPlace(m_rail.places().value(0).id);
    else
        m_rail.select(contextId);
    if (!tab.isEmpty())
        setTab(tab);
    if (!itemId.isEmpty())
        m_item.open(itemId);
}

QList<TabItem> WorkModuleShell::tabs() const
{
    QList<TabItem> items;
    for (const Tab tab : visibleTabs(m_config, m_context)) {
        TabItem item { tabId(tab), tabLabel(tab) };
        if (tab == Tab::Approvals)
            item.count = m_header.counts().waitingDecisions + m_header.counts().proposedMemory;
        items.append(item);
    }
    return items;
}

void WorkModuleShell::setTab(const QString& tab)
{
    const QList<Tab> allowed = visibleTabs(m_config, m_context);
    const auto found = std::ranges::find(allowed, tab, tabId);
    if (found == allowed.end() || *found == m_tab)
        return;
    const bool wasBoard = surface() == "board"_L1;
    m_tab = *found;
    if (surface() == "board"_L1)
        m_board.setScope(scopeOf(m_config.module, m_context, m_tab), lanesOf(m_config, m_context));
    else if (wasBoard)
        m_board.dismissUndo();
    readSurface();
    Q_EMIT changed();
}

QString WorkModuleShell::surface() const
{
    return surfaceOf(m_tab);
}

bool WorkModuleShell::queueDraft(const QString& text)
{
    if (text.trimmed().isEmpty())
        return false;
    WorkDraft draft = emptyDraft(WorkCreateFlow::Item);
    draft.kind = u"reply"_s;
    draft.title = u"Reply for %1"_s.arg(m_header.title());
    draft.summary = text;
    const auto saved = saveItem(m_at.db, { .module = m_config.module, .context = m_context }, draft);
    m_notice
        = saved ? u"Saved as a work item. Nothing is sent; the decision waits in Approvals."_s : saved.error().message;
    m_at.db.watch().tell(StoreSubject::Work);
    m_at.db.watch().tell(StoreSubject::Approvals);
    refresh();
    return saved.has_value();
}

void WorkModuleShell::exportContext()
{
    if (!m_context)
        return;
    m_notice = saveDownload(m_context->title, u"md"_s, contextAsMarkdown(m_at.db, *m_context).toUtf8());
    Q_EMIT changed();
}

QString WorkModuleShell::notice() const
{
    return m_notice.isEmpty() && surface() != "chat"_L1 ? m_chat.status() : m_notice;
}

void WorkModuleShell::dismissNotice()
{
    m_notice.clear();
    m_chat.dismissError();
    Q_EMIT changed();
}

void WorkModuleShell::openSource(const QString& source)
{
    if (source.startsWith("item:"_L1))
        m_item.open(source.section(u':', 1));
    else
        setTab(u"evidence"_s);
}

}
