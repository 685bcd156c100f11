#include "Inbox/List/InboxWords.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

struct FilterWords {
    InboxFilter filter;
    QString key;
    QString label;
};

const std::array<FilterWords, 4>& filterWords()
{
    static const std::array<FilterWords, 4> words { {
        { InboxFilter::NeedsMe, QStringLiteral("needsMe"), QStringLiteral("Needs me") },
        { InboxFilter::Today, QStringLiteral("today"), QStringLiteral("Today") },
        { InboxFilter::All, QStringLiteral("all"), QStringLiteral("All") },
        { InboxFilter::Archived, QStringLiteral("archived"), QStringLiteral("Archived") },
    } };
    return words;
}

}

QString wordOf(InboxFilter filter)
{
    return std::ranges::find(filterWords(), filter, &FilterWords::filter)->key;
}

std::optional<InboxFilter> inboxFilter(const QString& word)
{
    const auto found = std::ranges::find(filterWords(), word, &FilterWords::key);
    return found == filterWords().end() ? std::nullopt : std::optional(found->filter);
}

std::optional<ViewMode> viewMode(const QString& word)
{
    if (word == QStringLiteral("contacts"))
        return ViewMode::Contacts;
    return word == QStringLiteral("messages") ? std::optional(ViewMode::Messages) : std::nullopt;
}

std::optional<SortMode> sortMode(const QString& word)
{
    if (word == QStringLiteral("recent"))
        return SortMode::Recent;
    return word == QStringLiteral("unread") ? std::optional(SortMode::Unread) : std::nullopt;
}

QList<TabItem> inboxTabs(const std::function<int(InboxFilter)>& countOf)
{
    QList<TabItem> tabs;
    for (const FilterWords& words : filterWords())
        tabs.append({ words.key, words.label, countOf(words.filter) });
    return tabs;
}

}
