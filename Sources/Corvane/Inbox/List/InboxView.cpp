#include "Inbox/List/InboxView.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Inbox/List/InboxWords.h"
#include "Platform/AppPaths.h"
#include "Presentation/DateWords.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds reloadPause { 100 };
constexpr Milliseconds searchDelay { 250 };
constexpr Milliseconds countsPeriod { 1000 };

}

InboxView::InboxView(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_engine(surroundings.engine)
    , m_accounts(surroundings.accounts)
    , m_defaults(surroundings.defaults)
    , m_notifications(surroundings.notifications)
    , m_scheduler(surroundings.scheduler)
    , m_rows(m_engine.db())
    , m_hits(m_engine.db(), m_scheduler)
    , m_counts(m_engine.db())
    , m_avatars(m_engine, m_accounts)
    , m_thread(m_engine, m_accounts, m_scheduler)
    , m_composer({ m_engine, m_accounts, m_defaults, m_scheduler, surroundings.microphone, surroundings.desktop,
          surroundings.paths.applicationSupport + QStringLiteral("/unsent.json"),
          surroundings.paths.applicationSupport + QStringLiteral("/unsent-messages.json"), surroundings.voice })
    , m_assistant({ m_engine.db(), surroundings.ai, surroundings.translations, m_composer })
    , m_summary(m_engine.db(), surroundings.ai)
    , m_askLumo(m_engine.db(), surroundings.ai)
    , m_composeSheet(m_accounts, m_engine, surroundings.desktop,
          [this](const Account& account, const QString& recipient, const OutgoingMessage& message) {
              return composeNew(account, recipient, message);
          })
    , m_crm(m_engine.db(), m_scheduler)
    , m_undo(m_scheduler, [this] { Q_EMIT undoChanged(); })
    , m_messageActions({ m_engine, surroundings.desktop, m_scheduler, m_thread, m_undo,
          [this] {
              return m_rows.rows();
          } }) // a search hides nobody to whom a message may go
    , m_voicePlayer(surroundings.player, m_thread, m_engine)
    , m_transcripts(surroundings.voice, m_thread, m_engine, m_defaults)
    , m_reloadSoon(m_scheduler, reloadPause,
          [this] {
              if (m_shown)
                  catchUp();
          })
    , m_countsSoon(m_scheduler, countsPeriod, [this] { presentCounts(); })
{
    m_tabs = countedTabs();
    connect(&m_engine, &EngineManager::inboxRevisionChanged, this, &InboxView::personChanged);
    connect(&m_accounts, &AccountStore::accountsChanged, this, &InboxView::reloadSoon);
    connect(&m_thread, &ThreadView::refused, &m_composer, &Composer::setSendError);
    connect(m_thread.reading(), &ThreadReading::read, this, &InboxView::readSelected);
    connect(&m_composer, &Composer::sent, m_thread.reading(), &ThreadReading::touch);
    connect(&m_hits, &MessageHits::changed, this, &InboxView::changed);
    connect(&m_transcripts, &VoiceTranscripts::speakingChanged, this, [this] {
        if (!m_transcripts.speakingId().isEmpty())
            m_voicePlayer.stop();
    });
    connect(&m_crm, &CRMPane::peopleChanged, this, &InboxView::afterAction);
    connect(&m_crm, &CRMPane::undoable, this,
        [this](const QString& text, const std::function<void()>& back) { m_undo.offer(text, back); });
    connect(&m_messageActions, &MessageActions::messagesChanged, this, [this] { personChanged(m_selectedId); });
    connect(&m_bulk, &BulkSelection::changed, this, &InboxView::present);
    connect(&m_palette, &CommandPalette::contactChosen, this,
        [this](const QString& contactId) { m_notifications.post(notifications::openConversation, contactId); });
    connect(&m_palette, &CommandPalette::searchChosen, this, &InboxView::searchFor);
    connect(&m_palette, &CommandPalette::closed, this, [this] { setShowPalette(false); });
    // A query may find, while it runs, that another workspace is to be shown: the reload waits its turn.
    m_workspaceChanged = m_notifications.observe(notifications::activeWorkspaceChanged, [this](const auto&) {
        close();
        reloadSoon();
    });
    m_conversationAsked
        = m_notifications.observe(notifications::openConversation, [this](const Notification& notification) {
              if (notification.object && !notification.object->isEmpty())
                  select(*notification.object);
          });
    m_composerAsked
        = m_notifications.observe(notifications::focusComposer, [this](const auto&) { m_composer.requestFocus(); });
}

InboxView::~InboxView() = default;

LocalDB& InboxView::db() const
{
    return m_engine.db();
}

QString InboxView::filterWord() const
{
    return wordOf(m_state.filter);
}

void InboxView::setFilterWord(const QString& word)
{
    InboxState state = asTyped();
    state.filter = inboxFilter(word).value_or(m_state.filter);
    narrow(state);
}

QString InboxView::viewModeWord() const
{
    return m_state.viewMode == ViewMode::Messages ? QStringLiteral("messages") : QStringLiteral("contacts");
}

void InboxView::setViewModeWord(const QString& word)
{
    InboxState state = asTyped();
    state.viewMode = viewMode(word).value_or(m_state.viewMode);
    narrow(state);
}

QString InboxView::sortWord() const
{
    return m_state.sort == SortMode::Unread ? QStringLiteral("unread") : QStringLiteral("recent");
}

void InboxView::setSortWord(const QString& word)
{
    InboxState state = asTyped();
    state.sort = sortMode(word).value_or(m_state.sort);
    narrow(state);
}

void InboxView::setSearch(const QString& search)
{
    if (m_search == search)
        return;
    m_search = search;
    m_searchDebounce = m_scheduler.after(searchDelay, [this] { reload(); });
    Q_EMIT searchChanged();
}

void InboxView::setChannelFilter(const QString& channel)
{
    InboxState state = asTyped();
    state.channelFilter = channel;
    narrow(state);
}

void InboxView::setAccountFilter(const QString& slug)
{
    InboxState state = asTyped();
    state.accountFilter = slug;
    narrow(state);
}

QString InboxView::channelFilterLabel() const
{
    return m_state.channelFilter.isEmpty() ? QString() : channelLabel(m_state.channelFilter);
}

QString InboxView::accountFilterLabel() const
{
    return accountLabel(m_state.accountFilter);
}

QString InboxView::accountLabel(const QString& slug) const
{
    const auto account = m_accounts.findBySlug(slug);
    return account ? account->name : slug;
}

QString InboxView::emptyTitle() const
{
    return corvane::emptyTitle(m_state, channelFilterLabel(), accountFilterLabel());
}

QString InboxView::emptyDetail() const
{
    return corvane::emptyDetail(m_state);
}

bool InboxView::emptyCanClear() const
{
    return corvane::emptyCanClear(m_state);
}

void InboxView::clearActiveEmptyFilter()
{
    narrow(withoutEmptyingFilter(asTyped()));
}

InboxState InboxView::asTyped() const
{
    InboxState state = m_state;
    state.search = m_search;
    return state;
}

void InboxView::narrow(const InboxState& state)
{
    const InboxState before = std::exchange(m_state, state);
    const bool rowsDiffer = before.filter != state.filter || before.search != state.search;
    if (m_search != state.search) {
        m_search = state.search;
        Q_EMIT searchChanged();
    }
    if (before.filter != state.filter) {
        m_bulk.clear();
        Q_EMIT filterChanged();
    }
    if (before.viewMode != state.viewMode || before.sort != state.sort)
        Q_EMIT viewChanged();
    if (before.channelFilter != state.channelFilter || before.accountFilter != state.accountFilter)
        Q_EMIT narrowingChanged();
    if (rowsDiffer)
        reload();
    else
        present();
}

void InboxView::setAtTop(bool atTop)
{
    if (m_atTop == atTop)
        return;
    m_atTop = atTop;
    m_topSeenTs = m_contacts.isEmpty() ? 0 : m_contacts.first().lastTs;
    Q_EMIT atTopChanged();
    Q_EMIT newAboveChanged();
}

QString InboxView::newAbove() const
{
    if (m_atTop || m_state.sort != SortMode::Recent)
        return {};
    const auto count = std::ranges::count_if(
        m_contacts, [this](const ContactRow& row) { return row.lastTs > m_topSeenTs && row.unread > 0; });
    return count == 0 ? QString() : QStringLiteral("%1 new above").arg(count);
}

void InboxView::appear()
{
    reload();
    m_midnight = m_scheduler.after(Milliseconds(nextMidnightMs(m_scheduler.nowMs()) - m_scheduler.nowMs()),
        [this] { appear(); }); // "today" and "yesterday" are others from then on
}

void InboxView::personChanged(const QString& contactId)
{
    if (contactId.isEmpty())
        m_allDue = true;
    else
        m_peopleDue.insert(contactId);
    if (m_shown)
        m_reloadSoon.request();
}

void InboxView::reloadSoon()
{
    personChanged({});
}

void InboxView::catchUp()
{
    if (m_allDue || (!m_peopleDue.isEmpty() && !readChanged()))
        reload();
}

bool InboxView::readChanged()
{
    repeatMerges(db());
    QStringList ids = std::exchange(m_peopleDue, {}).values();
    QStringList people;
    for (const QString& id : ids)
        people.append(personBehind(db(), id));
    ids += people;
    ids.removeDuplicates();
    m_rows.forget(ids);
    m_counts.forget(ids);
    if (!m_rows.read(m_state.filter, ids))
        return false;
    showRead(ids);
    return true;
}

void InboxView::reload()
{
    m_searchDebounce.reset();
    m_state.search = m_search;
    repeatMerges(db());
    m_rows.forget(std::exchange(m_peopleDue, {}).values());
    m_counts.forgetAll();
    m_allDue = false;
    m_rows.readAll(m_state.filter);
    showRead(std::nullopt);
}

void InboxView::showRead(const std::optional<QStringList>& contactIds)
{
    const auto wasRead = [&](const QString& id) {
        return !contactIds || contactIds->contains(id);
    };
    const QString query = m_state.query();
    m_contacts = query.isEmpty() ? m_rows.rows() : matching(m_rows.rows(), query);
    m_hits.find(query);
    if (const auto notice = consumeWorkspaceSelectionNotice(db())) {
        m_workspaceNotice = *notice;
        Q_EMIT workspaceNoticeChanged();
    }
    m_avatars.requestMissing(m_contacts);
    m_webMirror.refresh(db());
    if (!m_selectedId.isEmpty() && wasRead(m_selectedId)) {
        // Merged into somebody else meanwhile, maybe by another program: their thread is the other's.
        if (const QString person = personBehind(db(), m_selectedId); person != m_selectedId) {
            select(person);
            return;
        }
        if (const auto row = rowOf(m_selectedId))
            m_selectedRow = *row;
        openPanes(m_selectedRow);
        if (m_thread.reading()->isRead())
            readSelected();
    }
    m_loading = false;
    m_countsSoon.request();
    present();
}

QList<TabItem> InboxView::countedTabs() const
{
    return inboxTabs([this](InboxFilter filter) { return m_counts.of(filter); });
}

void InboxView::presentCounts()
{
    m_counts.read();
    const QList<TabItem> tabs = countedTabs();
    if (tabs == m_tabs)
        return;
    m_tabs = tabs;
    Q_EMIT tabsChanged();
}

void InboxView::present()
{
    const DateWords words(m_scheduler.nowMs());
    QList<ContactItem> items;
    const QList<ContactRow> rows = visible(m_contacts, m_state);
    if (m_state.viewMode == ViewMode::Messages) {
        for (const DateGroup& group : visibleDateGroups(rows, words))
            for (ContactItem item : m_rows.items(group.rows, words)) {
                item.dateGroup = group.label;
                items.append(item);
            }
    } else {
        items = m_rows.items(rows, words);
    }
    QStringList ids;
    for (qsizetype place = 0; place < items.size(); ++place) {
        ContactItem& item = items[place];
        item.selected = item.id == m_selectedId;
        item.checked = m_bulk.contains(item.id);
        if (item.selected)
            m_selectedPlace = int(place);
        ids.append(item.id);
    }
    m_contactModel.assign(items);
    m_bulk.setListed(ids, m_selectedId);
    m_palette.setContacts(m_contacts);

    const ContactItem selected = m_selectedId.isEmpty() ? ContactItem() : m_rows.item(m_selectedRow, words);
    if (selected != m_selected) {
        m_selected = selected;
        Q_EMIT selectedChanged();
    }
    presentChoices();
    presentBanners();
    Q_EMIT newAboveChanged();
    Q_EMIT changed();
}

void InboxView::presentChoices()
{
    QStringList channels;
    QStringList slugs;
    for (const ContactRow& row : m_contacts) {
        channels += row.platforms;
        slugs.append(row.account);
    }
    channels.removeDuplicates();
    slugs.removeDuplicates();
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

void InboxView::presentBanners()
{
    const QList<StalenessBanner> banners = m_webMirror.banners(m_state.channelFilter, m_scheduler.nowMs());
    if (banners == m_banners)
        return;
    m_banners = banners;
    Q_EMIT stalenessChanged();
}

}
