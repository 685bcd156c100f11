#include "Inbox/List/TabCounts.h"

namespace corvane {

TabCounts::TabCounts(LocalDB& db)
    : m_db(db)
{
}

void TabCounts::forget(const QStringList& contactIds)
{
    m_due += QSet<QString>(contactIds.begin(), contactIds.end());
}

void TabCounts::forgetAll()
{
    m_allDue = true;
}

void TabCounts::read()
{
    const QSet<QString> due = std::exchange(m_due, {});
    if (std::exchange(m_allDue, false)) {
        m_people = fetchCountedPeople(m_db);
    } else if (!due.isEmpty()) {
        const CountedPeople changed = fetchCountedPeople(m_db, due.values());
        m_people.needsMe.subtract(due).unite(changed.needsMe);
        m_people.today.subtract(due).unite(changed.today);
    }
}

int TabCounts::of(InboxFilter filter) const
{
    if (filter == InboxFilter::NeedsMe)
        return int(m_people.needsMe.size());
    return filter == InboxFilter::Today ? int(m_people.today.size()) : 0;
}

}
