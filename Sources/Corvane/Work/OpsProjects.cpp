#include "Work/OpsProjects.h"

#include "Foundation/Literals.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Work/WorkRows.h"
#include "Work/WorkWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int updatesShown = 50;
constexpr int ordersShown = 20;

OpsProjectSeed projectSeed(const OpsProjectRow& row, const DateWords& words)
{
    OpsProjectSeed seed;
    seed.id = row.id;
    seed.group = clientName(row);
    seed.name = shownLine(row.name.isEmpty() ? row.slug : row.name);
    seed.goal = shownLine(row.goal);
    seed.facts = factLine({ shownLine(row.category), u"priority %1"_s.arg(row.priority),
        row.status == "active"_L1 ? QString() : shownLine(row.status) });
    if (!row.latestBody.isEmpty())
        seed.latest = factLine({ shownTime(row.latestAt, words), shownLine(row.latestBody) });
    seed.liveTabs = row.liveTabs;
    seed.downTabs = row.downTabs;
    seed.openAsks = row.openAsks;
    seed.aloud = QStringList { seed.name, countWords(row.liveTabs, u"live terminal"_s, u"live terminals"_s),
        u"%1 down"_s.arg(row.downTabs), countWords(row.openAsks, u"open question"_s, u"open questions"_s), seed.latest }
                     .join(u", "_s);
    return seed;
}

OpsTabSeed tabSeed(const OpsTabRow& row, const DateWords& words)
{
    OpsTabSeed seed;
    seed.id = row.id;
    seed.name = shownLine(row.name);
    seed.detail = factLine({ shownLine(row.role), shownLine(row.model), shownLine(row.currentTask) });
    const auto heartbeat = parsedIsoTime(row.heartbeatAt);
    seed.state = factLine(
        { row.isLive ? u"Live"_s : u"Down"_s, heartbeat ? u"last seen "_s + words.ago(*heartbeat) : u"never seen"_s });
    seed.live = row.isLive;
    return seed;
}

}

QString clientName(const OpsProjectRow& project)
{
    const QString category = shownLine(project.category);
    return category.isEmpty() ? u"Other"_s : category;
}

OpsProjects::OpsProjects(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_asks(services, this)
{
    m_asks.setIncludeAnswered(true);
    connect(&m_asks, &OpsAsks::wrote, this, &OpsProjects::wrote);
}

void OpsProjects::reload()
{
    const QList<OpsProjectRow> all = fetchOpsProjects(m_at.db);
    const QList<OpsProjectRow> listed = m_arrange ? m_arrange(all) : all;
    const DateWords words(m_at.db.nowMs());
    QList<OpsProjectSeed> seeds;
    for (const OpsProjectRow& row : listed)
        seeds.append(projectSeed(row, words));
    m_projects.assign(seeds);
    const auto selected = std::ranges::find(all, m_selected.id, &OpsProjectRow::id);
    m_selected = selected != all.end() ? *selected : listed.value(0);
    readSelected();
}

void OpsProjects::select(const QString& id)
{
    if (id == m_selected.id)
        return;
    m_selected.id = id;
    m_orderTab.clear();
    m_error.clear();
    m_asks.closeAnswer();
    reload();
}

void OpsProjects::readSelected()
{
    const DateWords words(m_at.db.nowMs());
    QList<OpsTabSeed> tabs;
    QList<OpsLine> updates;
    QList<OpsLine> orders;
    m_asks.setProject(m_selected.id);
    if (!m_selected.id.isEmpty()) {
        for (const OpsTabRow& row : fetchOpsTabs(m_at.db, m_selected.id))
            tabs.append(tabSeed(row, words));
        const auto line = [&words](const QString& id, const QString& title, const QString& detail,
                              const QString& status, const QString& ts) {
            OpsLine shown;
            shown.id = id;
            shown.title = shownText(title);
            shown.detail = factLine({ shownLine(detail), shownTime(ts, words) });
            shown.status = shownLine(status);
            return shown;
        };
        for (const OpsUpdateRow& row : fetchOpsUpdates(m_at.db, m_selected.id, updatesShown))
            updates.append(line(row.id, row.body, row.kind, {}, row.ts));
        for (const OpsOrderRow& row : fetchOpsOrders(m_at.db, m_selected.id, ordersShown))
            orders.append(line(row.id, row.body, row.tabName.isEmpty() ? QString() : u"to "_s + row.tabName,
                row.status == "pending"_L1 ? u"Waiting for its agent"_s : row.status, row.ts));
    }
    m_tabs.assign(tabs);
    m_updates.assign(updates);
    m_orders.assign(orders);
    m_asks.reload();
    const bool known = std::ranges::any_of(tabs, [this](const OpsTabSeed& tab) { return tab.id == m_orderTab; });
    if (!known)
        m_orderTab = tabs.isEmpty() ? QString() : tabs.first().id;
    Q_EMIT changed();
}

QString OpsProjects::title() const
{
    return shownLine(m_selected.name.isEmpty() ? m_selected.slug : m_selected.name);
}

QString OpsProjects::goal() const
{
    return shownLine(m_selected.goal);
}

QString OpsProjects::facts() const
{
    return factLine({ shownLine(m_selected.repoPath), shownLine(hostWords(m_selected.execHost)) });
}

void OpsProjects::setOrderTab(const QString& tab)
{
    if (std::exchange(m_orderTab, tab) != tab)
        Q_EMIT changed();
}

QString OpsProjects::orderTabName() const
{
    const auto tab = std::ranges::find(m_tabs.rows(), m_orderTab, &OpsTabSeed::id);
    return tab == m_tabs.rows().end() ? QString() : tab->name;
}

bool OpsProjects::order(const QString& text)
{
    if (text.trimmed().isEmpty() || m_orderTab.isEmpty())
        return false;
    const bool saved = createOpsOrder(m_at.db, m_selected.id, m_orderTab, text, std::nullopt);
    m_error = saved ? QString() : u"Could not save pending message row."_s;
    reload();
    if (saved) {
        m_at.db.watch().tell(StoreSubject::Work);
        Q_EMIT wrote();
    }
    return saved;
}

}
