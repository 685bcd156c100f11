#include "Inbox/List/ContactListView.h"

#include "Foundation/Literals.h"
#include "Inbox/List/BulkSelection.h"
#include "Inbox/List/InboxWords.h"
#include "Inbox/List/ListFilter.h"
#include "Presentation/DateWords.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds reloadPause { 100 };
constexpr Milliseconds countsPeriod { 1000 };

}

ContactListView::ContactListView(
    LocalDB& db, Scheduler& scheduler, ListFilter& filter, BulkSelection& bulk, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_filter(filter)
    , m_bulk(bulk)
    , m_rows(db)
    , m_results(db, scheduler, filter)
    , m_counts(db)
    , m_reloadSoon(scheduler, reloadPause,
          [this] {
              if (m_shown)
                  catchUp();
          })
    , m_countsSoon(scheduler, countsPeriod, [this] { presentCounts(); })
{
    m_tabs = countedTabs();
    connect(&m_filter, &ListFilter::filterChanged, &m_bulk, &BulkSelection::clear);
    connect(&m_filter, &ListFilter::rowsChanged, this, &ContactListView::reload);
    connect(&m_filter, &ListFilter::shownChanged, this, &ContactListView::present);
    connect(&m_results, &SearchResults::changed, this, &ContactListView::changed);
    connect(&m_bulk, &BulkSelection::changed, this, &ContactListView::present);
}

void ContactListView::setAtTop(bool atTop)
{
    if (m_atTop == atTop)
        return;
    m_atTop = atTop;
    m_topSeenTs = m_contacts.isEmpty() ? 0 : m_contacts.first().lastTs;
    Q_EMIT atTopChanged();
    Q_EMIT newAboveChanged();
}

QString ContactListView::newAbove() const
{
    if (m_atTop || m_filter.state().sort != SortMode::Recent)
        return {};
    const auto count = std::ranges::count_if(
        m_contacts, [this](const ContactRow& row) { return row.lastTs > m_topSeenTs && row.unread > 0; });
    return count == 0 ? QString() : u"%1 new above"_s.arg(count);
}

int ContactListView::selectedIndex() const
{
    const auto& rows = m_contactModel.rows();
    const auto found = std::ranges::find(rows, m_openId, &ContactItem::id);
    return m_openId.isEmpty() || found == rows.end() ? -1 : int(found - rows.begin());
}

void ContactListView::setShown(bool shown)
{
    if (m_shown == shown)
        return;
    m_shown = shown;
    if (shown)
        m_reloadSoon.request();
    Q_EMIT shownChanged();
}

void ContactListView::appear()
{
    reload();
    m_midnight = m_scheduler.after(Milliseconds(nextMidnightMs(m_scheduler.nowMs()) - m_scheduler.nowMs()),
        [this] { appear(); }); // "today" and "yesterday" change
}

void ContactListView::personChanged(const QString& contactId)
{
    if (contactId.isEmpty())
        m_allDue = true;
    else
        m_peopleDue.insert(contactId);
    if (m_shown)
        m_reloadSoon.request();
}

void ContactListView::catchUp()
{
    if (m_allDue || (!m_peopleDue.isEmpty() && !readChanged()))
        reload();
}

bool ContactListView::readChanged()
{
    repeatMerges(m_db);
    QStringList ids = std::exchange(m_peopleDue, {}).values();
    QStringList people;
    for (const QString& id : ids)
        people.append(personBehind(m_db, id));
    ids += people;
    ids.removeDuplicates();
    m_rows.forget(ids);
    m_counts.forget(ids);
    if (!m_rows.read(m_filter.state().filter, ids))
        return false;
    showRead(ids);
    return true;
}

void ContactListView::reload()
{
    m_filter.takeSearch();
    repeatMerges(m_db);
    m_rows.forget(std::exchange(m_peopleDue, {}).values());
    m_counts.forgetAll();
    m_allDue = false;
    m_rows.readAll(m_filter.state().filter);
    showRead(std::nullopt);
}

void ContactListView::showRead(const std::optional<QStringList>& contactIds)
{
    const SearchQuery query = m_filter.state().wanted;
    m_contacts = query.isEmpty() ? m_rows.rows() : matching(m_rows.rows(), query);
    m_results.find(query);
    Q_EMIT read(contactIds);
    m_loading = false;
    m_countsSoon.request();
    if (contactIds && m_filter.state().viewMode == ViewMode::Contacts)
        presentChanged(*contactIds);
    else
        present();
}

QList<TabItem> ContactListView::countedTabs() const
{
    return inboxTabs([this](InboxFilter filter) { return m_counts.of(filter); });
}

void ContactListView::presentCounts()
{
    m_counts.read();
    const QList<TabItem> tabs = countedTabs();
    if (tabs == m_tabs)
        return;
    m_tabs = tabs;
    Q_EMIT tabsChanged();
}

void ContactListView::present()
{
    const DateWords words(m_scheduler.nowMs());
    QList<ContactItem> items;
    const QList<ContactRow> rows = visible(m_contacts, m_filter.state());
    if (m_filter.state().viewMode == ViewMode::Messages) {
        for (const DateGroup& group : visibleDateGroups(rows, words))
            for (ContactItem item : m_rows.items(group.rows, words)) {
                item.dateGroup = group.label;
                items.append(item);
            }
    } else {
        items = m_rows.items(rows, words);
    }
    QStringList ids;
    for (ContactItem& item : items) {
        mark(item);
        ids.append(item.id);
    }
    m_contactModel.assign(items);
    presented(ids);
}

void ContactListView::presentChanged(const QStringList& contactIds)
{
    const QSet<QString> people(contactIds.begin(), contactIds.end());
    QStringList ids;
    QList<ContactRow> theirs;
    for (const ContactRow& row : visible(m_contacts, m_filter.state())) {
        ids.append(row.id);
        if (people.contains(row.id))
            theirs.append(row);
    }
    QHash<QString, ContactItem> changed;
    for (ContactItem item : m_rows.items(theirs, DateWords(m_scheduler.nowMs()))) {
        mark(item);
        changed.insert(item.id, item);
    }
    m_contactModel.assignChanged(ids, changed);
    presented(ids);
}

void ContactListView::mark(ContactItem& item) const
{
    item.selected = item.id == m_openId;
    item.checked = m_bulk.contains(item.id);
}

void ContactListView::presented(const QStringList& contactIds)
{
    if (const qsizetype place = contactIds.indexOf(m_openId); place >= 0)
        m_openPlace = int(place);
    m_bulk.setListed(contactIds, m_openId);
    m_filter.offerChoices(m_contacts);
    Q_EMIT newAboveChanged();
    Q_EMIT changed();
}

std::optional<ContactRow> ContactListView::rowOf(const QString& contactId) const
{
    const auto listed = std::ranges::find(m_contacts, contactId, &ContactRow::id);
    const bool current = listed != m_contacts.end() && !m_allDue && !m_peopleDue.contains(contactId);
    return current ? std::optional(*listed) : fetchContact(m_db, contactId);
}

bool ContactListView::isEmpty() const
{
    return m_contactModel.rows().isEmpty() && m_results.isEmpty();
}

ContactItem ContactListView::item(const ContactRow& row)
{
    return m_rows.item(row, DateWords(m_scheduler.nowMs()));
}

void ContactListView::setOpen(const QString& contactId)
{
    m_openId = contactId;
}

QString ContactListView::neighbour(int delta) const
{
    const auto& rows = m_contactModel.rows();
    if (rows.isEmpty() || delta == 0)
        return {};
    // If the open row has left the list, the one below takes its place.
    const int current = selectedIndex();
    const int step = current < 0 && delta > 0 ? delta - 1 : delta;
    const int target = std::clamp((current < 0 ? m_openPlace : current) + step, 0, int(rows.size()) - 1);
    return target == current ? QString() : rows.at(target).id;
}

void ContactListView::setRead(const QString& contactId)
{
    m_counts.forget({ contactId });
    m_rows.setRead(contactId);
    const auto row = std::ranges::find(m_contacts, contactId, &ContactRow::id);
    if (row != m_contacts.end())
        row->unread = 0;
}

}
