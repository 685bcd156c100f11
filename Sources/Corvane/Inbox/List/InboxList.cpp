#include "Inbox/List/InboxList.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/DateWords.h"

#include <QHash>
#include <algorithm>
#include <numeric>

namespace corvane {

namespace {

/// Sorts by key, greatest first; stable.
template <typename Value, typename Key> QList<Value> greatestFirst(const QList<Value>& values, Key Value::* key)
{
    QList<qsizetype> order(values.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::sort(order, {}, [&](qsizetype at) { return std::pair(-qint64(values.at(at).*key), at); });
    QList<Value> result;
    result.reserve(values.size());
    for (const qsizetype at : order)
        result.append(values.at(at));
    return result;
}

}

QList<ContactRow> matching(const QList<ContactRow>& rows, const SearchQuery& query)
{
    if (!query.asksFor(SearchGroup::People))
        return {};
    const QString wanted = folded(query.text);
    QStringList parts;
    for (const QString& part : query.from + query.places)
        parts.append(folded(part));
    QList<ContactRow> found;
    std::ranges::copy_if(rows, std::back_inserter(found), [&](const ContactRow& row) {
        const QString name = folded(row.name);
        return (name.contains(wanted) || folded(row.snippet).contains(wanted))
            && std::ranges::all_of(parts, [&](const QString& part) { return name.contains(part); })
            && std::ranges::all_of(
                query.channels, [&](const QString& channel) { return row.platforms.contains(channel); });
    });
    return found;
}

QList<ContactRow> visible(const QList<ContactRow>& contacts, const InboxState& state)
{
    if (state.channelFilter.isEmpty() && state.accountFilter.isEmpty() && state.sort == SortMode::Recent)
        return contacts;
    QList<ContactRow> rows;
    rows.reserve(contacts.size());
    std::ranges::copy_if(contacts, std::back_inserter(rows), [&](const ContactRow& row) {
        return (state.channelFilter.isEmpty() || row.platforms.contains(state.channelFilter))
            && (state.accountFilter.isEmpty() || row.account == state.accountFilter);
    });
    return state.sort == SortMode::Unread ? greatestFirst(rows, &ContactRow::unread) : rows;
}

QList<DateGroup> visibleDateGroups(const QList<ContactRow>& visible, const DateWords& words)
{
    QList<DateGroup> groups;
    QHash<QString, qsizetype> places;
    for (const ContactRow& row : visible) {
        const QString label = words.group(row.lastTs);
        if (!places.contains(label)) {
            places.insert(label, groups.size());
            groups.append({ label, {}, row.lastTs });
        }
        DateGroup& group = groups[places.value(label)];
        group.rows.append(row);
        group.newestTs = std::max(group.newestTs, row.lastTs);
    }
    return greatestFirst(groups, &DateGroup::newestTs);
}

QString emptyTitle(const InboxState& state, const QString& channelLabel, const QString& accountLabel)
{
    if (!state.wanted.isUsable)
        return u"The search is not understood"_s;
    if (!state.query().isEmpty())
        return u"No conversations match “%1”"_s.arg(state.query());
    if (!state.channelFilter.isEmpty())
        return u"No %1 conversations — channel filter active"_s.arg(channelLabel);
    if (!state.accountFilter.isEmpty())
        return u"No conversations for %1 — account filter active"_s.arg(accountLabel);
    switch (state.filter) {
    case InboxFilter::NeedsMe:
        return u"No conversations need you — view filter active"_s;
    case InboxFilter::Today:
        return u"No conversations today — view filter active"_s;
    case InboxFilter::Archived:
        return u"Nothing archived"_s;
    case InboxFilter::All:
        break;
    }
    return u"No conversations"_s;
}

QString emptyDetail(const InboxState& state)
{
    if (!state.wanted.isUsable)
        return state.wanted.hint;
    if (!state.query().isEmpty())
        return u"Search checks contact names and latest message previews."_s;
    if (!emptyCanClear(state))
        return u"Pair a WhatsApp account in Accounts — chats appear here."_s;
    return {};
}

bool emptyCanClear(const InboxState& state)
{
    return !state.query().isEmpty() || !state.channelFilter.isEmpty() || !state.accountFilter.isEmpty()
        || state.filter != InboxFilter::All;
}

InboxState withoutEmptyingFilter(InboxState state)
{
    if (!state.query().isEmpty()) {
        state.search.clear();
        state.wanted = {};
    } else if (!state.channelFilter.isEmpty()) {
        state.channelFilter.clear();
    } else if (!state.accountFilter.isEmpty()) {
        state.accountFilter.clear();
    } else {
        state.filter = InboxFilter::All;
    }
    return state;
}

}
