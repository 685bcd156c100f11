#pragma once

#include "Inbox/List/InboxList.h"

#include <QVariantList>
#include <functional>

namespace corvane {

// The words by which the screen names what the person chose. An unknown word gives nothing.
QString wordOf(InboxFilter filter);
std::optional<InboxFilter> inboxFilter(const QString& word);
std::optional<ViewMode> viewMode(const QString& word);
std::optional<SortMode> sortMode(const QString& word);

/// The tabs over the list, of {key, label, count}; a count of 0 is not shown.
QVariantList inboxTabs(const std::function<int(InboxFilter)>& countOf);

}
