#include "Inbox/List/InboxWords.h"

#include "Foundation/Literals.h"

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
        { InboxFilter::NeedsMe, u"needsMe"_s, u"Needs me"_s },
        { InboxFilter::Today, u"today"_s, u"Today"_s },
        { InboxFilter::All, u"all"_s, u"All"_s },
        { InboxFilter::Archived, u"archived"_s, u"Archived"_s },
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
    if (word == u"contacts"_s)
        return ViewMode::Contacts;
    return word == u"messages"_s ? std::optional(ViewMode::Messages) : std::nullopt;
}

std::optional<SortMode> sortMode(const QString& word)
{
    if (word == u"recent"_s)
        return SortMode::Recent;
    return word == u"unread"_s ? std::optional(SortMode::Unread) : std::nullopt;
}

QList<TabItem> inboxTabs(const std::function<int(InboxFilter)>& countOf)
{
    QList<TabItem> tabs;
    for (const FilterWords& words : filterWords())
        tabs.append({ words.key, words.label, countOf(words.filter) });
    return tabs;
}

}
