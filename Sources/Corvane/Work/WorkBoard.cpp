#include "Work/WorkBoard.h"

#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int openOnPage = 200;
constexpr int finishedOnPage = 50;

}

WorkLane::WorkLane(Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_items(scheduler)
{
}

QString WorkLane::moreText() const
{
    const int hidden = m_count - int(m_items.rows().size());
    return hidden > 0 ? u"%1 more"_s.arg(hidden) : QString();
}

void WorkLane::setFolded(bool folded)
{
    if (std::exchange(m_folded, folded) != folded)
        Q_EMIT changed();
}

void WorkLane::show(const QString& title, int count, const QList<WorkItemSeed>& rows)
{
    const bool same = m_title == title && m_count == count && m_items.rows().size() == rows.size();
    m_title = title;
    m_count = count;
    m_items.assign(rows);
    if (!same)
        Q_EMIT changed();
}

WorkBoard::WorkBoard(LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_undo(scheduler, [this] { Q_EMIT changed(); })
{
}

void WorkBoard::setScope(const WorkItemFilter& scope, const WorkLanes& lanes)
{
    m_filter = scope;
    m_pages = 1;
    m_error.clear();
    m_undo.dismiss();
    if (lanes.names != m_lanes.names) {
        m_lanes = lanes;
        for (int at = int(m_laneObjects.size()); at <= lanes.other(); ++at)
            m_laneObjects.append(new WorkLane(m_scheduler, this));
        for (int at = 0; at < int(m_laneObjects.size()); ++at)
            m_laneObjects.at(at)->setFolded(lanes.foldsFinished && at == lanes.finished);
    }
    m_lanes = lanes;
}

void WorkBoard::setEmptyWords(const QString& title, const QString& text)
{
    m_emptyTitle = title;
    m_emptyText = text;
}

void WorkBoard::reload()
{
    if (m_laneObjects.isEmpty())
        return;
    m_choices = workItemWords(m_db, m_filter.module, m_filter.context);
    const QStringList waiting = titlesOfWaitingDecisions(m_db, m_filter.module, m_filter.context);
    const QSet<QString> waits(waiting.begin(), waiting.end());
    const DateWords words(m_db.nowMs());
    QList<int> counts(m_lanes.other() + 1);
    QList<QList<WorkItemSeed>> rows(m_lanes.other() + 1);
    m_total = 0;
    for (const WorkStatusCount& count : countWorkItems(m_db, m_filter)) {
        counts[m_lanes.laneOf(count.status)] += count.count;
        m_total += count.count;
    }
    const auto place = [&](WorkItems which, int limit) {
        for (const WorkItemRecord& item : fetchWorkItems(m_db, m_filter, which, limit))
            rows[m_lanes.laneOf(item.status)].append(itemSeed(item, waits.contains(u"Review "_s + item.title), words));
    };
    place(WorkItems::Open, openOnPage * m_pages);
    place(WorkItems::Finished, finishedOnPage * m_pages);
    for (int at = 0; at <= m_lanes.other(); ++at)
        m_laneObjects.at(at)->show(m_lanes.name(at), counts.at(at), rows.at(at));
    const int laneCount = m_lanes.other() + (counts.last() > 0 ? 1 : 0);
    if (std::exchange(m_laneCount, laneCount) != laneCount)
        Q_EMIT lanesChanged();
    Q_EMIT changed();
}

WorkLane* WorkBoard::lane(int index) const
{
    return m_laneObjects.value(index);
}

bool WorkBoard::filtered() const
{
    return !m_filter.words.isEmpty() || !m_filter.owner.isEmpty() || !m_filter.priority.isEmpty()
        || !m_filter.kind.isEmpty();
}

void WorkBoard::clearFilters()
{
    for (QString* const field : { &m_filter.words, &m_filter.owner, &m_filter.priority, &m_filter.kind })
        field->clear();
    reload();
}

void WorkBoard::filter(QString WorkItemFilter::* field, const QString& value)
{
    if (m_filter.*field == value)
        return;
    m_filter.*field = value;
    reload();
}

QString WorkBoard::emptyTitle() const
{
    if (m_total > 0)
        return {};
    return filtered() ? u"Nothing matches these filters"_s : m_emptyTitle;
}

QString WorkBoard::emptyText() const
{
    return filtered() ? u"Remove a filter to see more."_s : m_emptyText;
}

void WorkBoard::move(const QString& id, int lane)
{
    const auto item = fetchWorkItem(m_db, id);
    if (!item || lane < 0 || lane >= m_lanes.other() || m_lanes.laneOf(item->status) == lane)
        return;
    const QString before = item->status;
    const QString after = m_lanes.statusOf(lane);
    if (!write(id, after))
        return;
    m_undo.offer(u"Moved to %1: %2"_s.arg(m_lanes.name(lane), shownLine(item->title)), [this, id, before, after] {
        // A newer move must not be undone.
        const auto now = fetchWorkItem(m_db, id);
        if (now && now->status == after)
            write(id, before);
    });
}

void WorkBoard::moveBy(const QString& id, int lanes)
{
    const auto item = fetchWorkItem(m_db, id);
    if (!item)
        return;
    // From "Other", moving goes back in from the right.
    move(id, std::clamp(m_lanes.laneOf(item->status) + lanes, 0, m_lanes.other() - 1));
}

void WorkBoard::showMore()
{
    ++m_pages;
    reload();
}

bool WorkBoard::write(const QString& item, const QString& status)
{
    const bool written = updateWorkItemStatus(m_db, item, status);
    m_error = written ? QString() : u"It could not be moved: the change was not saved."_s;
    reload();
    if (written) {
        m_db.watch().tell(StoreSubject::Work);
        Q_EMIT wrote();
    }
    return written;
}

}
