#include "Work/OpsHub.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"
#include "Work/WorkWords.h"

#include <algorithm>

namespace corvane {

namespace {

const QString ops = u"ops"_s;
constexpr int itemsShown = 200;
constexpr int eventsRead = 25;

WorkItemFilter financeItems()
{
    return { .module = ops, .context = {}, .textSigns = financeSigns() };
}

}

OpsFinance::OpsFinance(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
{
}

void OpsFinance::reload()
{
    WorkItemFilter filter = financeItems();
    int open = 0;
    for (const WorkStatusCount& count : countWorkItems(m_at.db, filter))
        open += isFinishedStatus(count.status) ? 0 : count.count;
    filter.words = m_query.trimmed();
    const DateWords words(m_at.db.nowMs());
    const QStringList waiting = titlesOfWaitingDecisions(m_at.db, ops, {});
    QList<WorkItemSeed> rows;
    for (const WorkItems which : { WorkItems::Open, WorkItems::Finished }) {
        for (const WorkItemRecord& item : fetchWorkItems(m_at.db, filter, which, itemsShown))
            rows.append(itemSeed(item, waiting.contains(u"Review "_s + item.title), words));
    }
    m_items.assign(rows);

    int contexts = 0;
    int evidence = 0;
    for (const WorkContextRow& context : fetchWorkContexts(m_at.db, ops, itemsShown)) {
        if (!isFinanceContext(context))
            continue;
        ++contexts;
        evidence += countWork(m_at.db, ops, context.id).evidence;
    }
    int approvals = 0;
    for (const WorkDecisionRecord& decision : fetchPendingWorkDecisions(m_at.db, itemsShown))
        approvals += decision.module == ops && decision.risk == "money"_L1 ? 1 : 0;
    const auto metric = [](const QString& label, int value) {
        WorkMetricSeed seed;
        seed.label = label;
        seed.value = QString::number(value);
        return seed;
    };
    m_metrics = { metric(u"Finance contexts"_s, contexts), metric(u"Open work"_s, open),
        metric(u"Pending approvals"_s, approvals), metric(u"Evidence"_s, evidence) };
    Q_EMIT changed();
}

void OpsFinance::setQuery(const QString& query)
{
    if (std::exchange(m_query, query) != query)
        reload();
}

QString OpsFinance::emptyText() const
{
    if (!m_items.rows().isEmpty())
        return {};
    return m_query.trimmed().isEmpty() ? u"No finance work items found in local SQLite."_s
                                       : u"No finance work matches “%1”."_s.arg(m_query.trimmed());
}

void OpsFinance::gate()
{
    const bool saved = insertWorkDecision(m_at.db,
        { .module = ops,
            .context = std::nullopt,
            .title = u"Review finance action"_s,
            .proposal = u"Oskel approval required before any invoice send, vendor payment, billing change, or money "
                        "movement."_s,
            .rationale = u"Ops Finance is gated: this button records the approval ask only."_s,
            .risk = u"money"_s })
                           .has_value();
    m_notice = saved ? u"A decision waits in Approvals. Nothing was sent or paid."_s
                     : u"The decision was not saved: the database could not be written."_s;
    reload();
    if (saved) {
        m_at.db.watch().tell(StoreSubject::Approvals);
        m_at.db.watch().tell(StoreSubject::Work);
        Q_EMIT wrote();
    }
}

void OpsFinance::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

OpsHub::OpsHub(const WorkServices& services, QObject* parent)
    : QObject(parent)
    , m_at(services)
    , m_shell(services, WorkConsoleConfig::ops(),
          { { u"home"_s, u"Home"_s }, { u"projects"_s, u"Projects"_s }, { u"asks"_s, u"Asks"_s },
              { u"finance"_s, u"Finance"_s } },
          this)
    , m_asks(services, this)
    , m_projects(services, this)
    , m_finance(services, this)
{
    m_shell.board()->setEmptyWords(u"No active ops work"_s, u"Work appears when an agent or you create an item."_s);
    const auto readAgain = [this] {
        m_shell.refresh();
    };
    connect(&m_shell, &WorkModuleShell::refreshed, this, &OpsHub::readPlaces);
    connect(&m_shell, &WorkModuleShell::aged, this, [this] {
        if (m_shell.rail()->place() == "projects"_L1)
            m_projects.reload();
    });
    connect(&m_asks, &OpsAsks::wrote, this, readAgain);
    connect(&m_projects, &OpsProjects::wrote, this, readAgain);
    connect(&m_finance, &OpsFinance::wrote, this, readAgain);
    // The badge is visible in the bar whichever hub is shown.
    m_at.db.watch().on(StoreSubject::Work, this, [this] { countUrgent(); });
    countUrgent();
}

void OpsHub::countUrgent()
{
    const int urgent = openUrgentAsks(m_at.db);
    if (std::exchange(m_urgent, urgent) != urgent)
        Q_EMIT changed();
}

void OpsHub::readPlaces()
{
    countUrgent();
    m_asks.reload();
    const QString place = m_shell.rail()->place();
    if (place == "projects"_L1)
        m_projects.reload();
    if (place == "finance"_L1)
        m_finance.reload();
    if (place == "home"_L1) {
        m_latest.assign(opsTimeline(fetchWorkEvents(m_at.db, ops, {}, eventsRead), DateWords(m_at.db.nowMs())));
        m_active = 0;
        for (const WorkStatusCount& count : countWorkItems(m_at.db, { .module = ops, .context = {} }))
            m_active += count.status.toLower() == "in_progress"_L1 ? count.count : 0;
    }
    m_shell.rail()->setPlaceCount(u"asks"_s, openAsks(m_at.db));
    Q_EMIT changed();
}

QString OpsHub::activeText() const
{
    return m_active > 0 ? u"%1 in progress"_s.arg(m_active) : QString();
}

void OpsHub::showAsk(const QString& id)
{
    m_shell.rail()->setPlace(u"asks"_s);
    m_asks.beginAnswer(id);
}

void OpsHub::showProject(const QString& id)
{
    m_shell.rail()->setPlace(u"projects"_s);
    m_projects.select(id);
}

}
