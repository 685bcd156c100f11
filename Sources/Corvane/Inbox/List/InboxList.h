#pragma once

#include "Store/Messages/InboxQueries.h"
#include "Store/Search/SearchQuery.h"

namespace corvane {

class DateWords;

enum class ViewMode { Contacts, Messages }; ///< a flat list, or grouped by date
enum class SortMode { Recent, Unread };

/// The user's view options.
struct InboxState {
    InboxFilter filter = InboxFilter::All;
    ViewMode viewMode = ViewMode::Contacts;
    SortMode sort = SortMode::Recent;
    QString search; ///< as typed
    SearchQuery wanted; ///< the same, taken apart
    QString channelFilter; ///< a channel's raw word; empty for all
    QString accountFilter; ///< a slug; empty for all

    QString query() const { return search.trimmed(); }
};

/// The rows whose name, or else snippet, contains the text, ignoring case and diacritics, and that meet what narrows
/// the search.
QList<ContactRow> matching(const QList<ContactRow>& rows, const SearchQuery& query);

/// What the list shows of `contacts`, in its order.
QList<ContactRow> visible(const QList<ContactRow>& contacts, const InboxState& state);

struct DateGroup {
    QString label;
    QList<ContactRow> rows;
    qint64 newestTs = 0; ///< milliseconds since the epoch
};

/// Grouped by the day of the newest message; newest group first.
QList<DateGroup> visibleDateGroups(const QList<ContactRow>& visible, const DateWords& words);

// The texts of an empty list.
QString emptyTitle(const InboxState& state, const QString& channelLabel, const QString& accountLabel);
QString emptyDetail(const InboxState& state);
bool emptyCanClear(const InboxState& state);

/// Removes the reason for an empty list: the search, else the channel, else the account, else the view filter.
InboxState withoutEmptyingFilter(InboxState state);

}
