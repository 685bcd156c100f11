#pragma once

#include "Inbox/List/InboxList.h"
#include "Presentation/Choice.h"

#include <functional>

namespace corvane {

// The words for the user's view options. Unknown words give nothing.
QString wordOf(InboxFilter filter);
std::optional<InboxFilter> inboxFilter(const QString& word);
std::optional<ViewMode> viewMode(const QString& word);
std::optional<SortMode> sortMode(const QString& word);

/// The tabs above the list.
QList<TabItem> inboxTabs(const std::function<int(InboxFilter)>& countOf);

}
