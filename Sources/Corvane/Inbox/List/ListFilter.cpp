#include "Inbox/List/ListFilter.h"

#include "Engines/AccountStore.h"
#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Inbox/List/InboxWords.h"
#include "Presentation/DateWords.h"

namespace corvane {

namespace {

constexpr Milliseconds searchDelay { 250 };

}

ListFilter::ListFilter(AccountStore& accounts, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_accounts(accounts)
    , m_scheduler(scheduler)
{
}

QString ListFilter::filterWord() const
{
    return wordOf(m_state.filter);
}

void ListFilter::setFilterWord(const QString& word)
{
    InboxState state = asTyped();
    state.filter = inboxFilter(word).value_or(m_state.filter);
    narrow(state);
}

QString ListFilter::viewModeWord() const
{
    return m_state.viewMode == ViewMode::Messages ? u"messages"_s : u"contacts"_s;
}

void ListFilter::setViewModeWord(const QString& word)
{
    InboxState state = asTyped();
    state.viewMode = viewMode(word).value_or(m_state.viewMode);
    narrow(state);
}

QString ListFilter::sortWord() const
{
    return m_state.sort == SortMode::Unread ? u"unread"_s : u"recent"_s;
}

void ListFilter::setSortWord(const QString& word)
{
    InboxState state = asTyped();
    state.sort = sortMode(word).value_or(m_state.sort);
    narrow(state);
}

void ListFilter::setSearch(const QString& search)
{
    if (m_search == search)
        return;
    m_search = search;
    m_searchDebounce = m_scheduler.after(searchDelay, [this] { Q_EMIT rowsChanged(); });
    Q_EMIT searchChanged();
}

void ListFilter::setChannelFilter(const QString& channel)
{
    InboxState state = asTyped();
    state.channelFilter = channel;
    narrow(state);
}

void ListFilter::setAccountFilter(const QString& slug)
{
    InboxState state = asTyped();
    state.accountFilter = slug;
    narrow(state);
}

QString ListFilter::channelFilterLabel() const
{
    return m_state.channelFilter.isEmpty() ? QString() : channelLabel(m_state.channelFilter);
}

QString ListFilter::accountFilterLabel() const
{
    return accountLabel(m_state.accountFilter);
}

QString ListFilter::accountLabel(const QString& slug) const
{
    const auto account = m_accounts.findBySlug(slug);
    return account ? account->name : slug;
}

QString ListFilter::emptyTitle() const
{
    return corvane::emptyTitle(m_state, channelFilterLabel(), accountFilterLabel());
}

QString ListFilter::emptyDetail() const
{
    return corvane::emptyDetail(m_state);
}

bool ListFilter::emptyCanClear() const
{
    return corvane::emptyCanClear(m_state);
}

void ListFilter::clearActiveEmptyFilter()
{
    narrow(withoutEmptyingFilter(asTyped()));
}

InboxState ListFilter::searching(InboxState state, const QString& search) const
{
    state.search = search;
    state.wanted = parseSearch(search, DateWords(m_scheduler.nowMs()).today());
    return state;
}

void ListFilter::narrow(const InboxState& state)
{
    const InboxState before = std::exchange(m_state, state);
    const bool rowsDiffer = before.filter != state.filter || before.search != state.search;
    if (m_search != state.search) {
        m_search = state.search;
        Q_EMIT searchChanged();
    }
    if (before.filter != state.filter)
        Q_EMIT filterChanged();
    if (before.viewMode != state.viewMode || before.sort != state.sort)
        Q_EMIT viewChanged();
    if (before.channelFilter != state.channelFilter || before.accountFilter != state.accountFilter)
        Q_EMIT narrowingChanged();
    Q_EMIT stateChanged();
    if (rowsDiffer)
        Q_EMIT rowsChanged();
    else
        Q_EMIT shownChanged();
}

void ListFilter::searchFor(const QString& query)
{
    narrow(searching(m_state, query));
}

void ListFilter::takeSearch()
{
    m_searchDebounce.reset();
    if (m_state.search == m_search)
        return;
    m_state = asTyped();
    Q_EMIT stateChanged();
}

void ListFilter::offerChoices(const QList<ContactRow>& rows)
{
    QStringList channels;
    QStringList slugs;
    const auto add = [](QStringList& known, const QString& word) {
        if (!known.contains(word))
            known.append(word);
    };
    for (const ContactRow& row : rows) {
        for (const QString& channel : row.platforms)
            add(channels, channel);
        add(slugs, row.account);
    }
    channels.sort();
    slugs.sort();
    QList<Choice> channelChoices;
    for (const QString& channel : channels)
        channelChoices.append({ channel, channelLabel(channel) });
    QList<Choice> accountChoices;
    for (const QString& slug : slugs)
        accountChoices.append({ slug, accountLabel(slug) });
    if (channelChoices == m_channelChoices && accountChoices == m_accountChoices)
        return;
    m_channelChoices = channelChoices;
    m_accountChoices = accountChoices;
    Q_EMIT choicesChanged();
}

}
