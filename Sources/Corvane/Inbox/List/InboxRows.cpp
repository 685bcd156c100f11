#include "Inbox/List/InboxRows.h"

#include "Presentation/DateWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int contactLimit = 300;

bool standsBefore(const ContactRow& left, const ContactRow& right)
{
    return left.lastTs != right.lastTs ? left.lastTs > right.lastTs : left.id < right.id;
}

}

InboxRows::InboxRows(LocalDB& db)
    : m_db(db)
{
}

void InboxRows::readAll(InboxFilter filter)
{
    m_rows = fetchContacts(m_db, filter, {}, contactLimit);
}

bool InboxRows::read(InboxFilter filter, const QStringList& contactIds)
{
    const auto rows = withChanged(m_rows, contactIds, fetchContacts(m_db, filter, contactIds), contactLimit);
    if (!rows)
        return false;
    m_rows = *rows;
    return true;
}

void InboxRows::setRead(const QString& contactId)
{
    const auto row = std::ranges::find(m_rows, contactId, &ContactRow::id);
    if (row != m_rows.end())
        row->unread = 0;
}

void InboxRows::forget(const QStringList& contactIds)
{
    for (const QString& id : contactIds)
        m_shown.remove(id);
}

ContactItem InboxRows::item(const ContactRow& row, const DateWords& words)
{
    return items({ row }, words).first();
}

QList<ContactItem> InboxRows::items(const QList<ContactRow>& rows, const DateWords& words)
{
    const QDate day = words.today();
    QList<ContactItem> items;
    items.reserve(rows.size());
    QStringList others;
    QList<qsizetype> places;
    for (const ContactRow& row : rows) {
        const auto shown = m_shown.constFind(row.id);
        if (shown != m_shown.constEnd() && shown->day == day && shown->row == row) {
            items.append(shown->item);
            continue;
        }
        others.append(row.id);
        places.append(items.size());
        items.emplaceBack();
    }
    const QHash<QString, LastMessage> last = fetchLastMessages(m_db, others);
    for (const qsizetype place : places) {
        const ContactRow& row = rows.at(place);
        items[place] = contactItem(row, last.value(row.id), words);
        m_shown.insert(row.id, { row, items.at(place), day });
    }
    return items;
}

std::optional<QList<ContactRow>> withChanged(
    const QList<ContactRow>& rows, const QStringList& contactIds, const QList<ContactRow>& changed, int limit)
{
    QList<ContactRow> result = rows;
    result.removeIf([&](const ContactRow& row) { return contactIds.contains(row.id); });
    const bool othersFollow = rows.size() >= limit;
    for (const ContactRow& row : changed) {
        const auto place = std::ranges::upper_bound(result, row, standsBefore);
        if (othersFollow && place == result.end())
            continue;
        result.insert(place, row);
    }
    if (othersFollow && result.size() < limit)
        return std::nullopt;
    if (result.size() > limit)
        result.resize(limit);
    return result;
}

}
