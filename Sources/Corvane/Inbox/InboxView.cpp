#include "Inbox/InboxView.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/WAName.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

namespace corvane {

InboxView::InboxView(const Surroundings& at, Reply& reply, QObject* parent)
    : QObject(parent)
    , m_engine(at.engine)
    , m_notifications(at.notifications)
    , m_scheduler(at.scheduler)
    , m_filter(at.accounts, m_scheduler)
    , m_list(m_engine.db(), m_scheduler, m_filter, m_bulk)
    , m_notices(m_engine.db(), m_scheduler)
    , m_avatars(m_engine, at.accounts)
    , m_undo(m_scheduler, [this] { Q_EMIT m_actions.undoChanged(); })
    , m_person(at, m_list, m_undo)
    , m_reply(reply)
    , m_actions({ m_engine, at.accounts, m_filter, m_bulk, m_list, m_person, m_undo })
    , m_composeSheet(at.accounts, m_engine, at.desktop,
          [this](const Account& account, const QString& recipient, const OutgoingMessage& message) {
              return composeNew(account, recipient, message);
          })
    , m_paletteWork(m_engine.db(), m_scheduler)
{
    connect(&m_engine, &EngineManager::inboxRevisionChanged, &m_list, &ContactListView::personChanged);
    connect(&at.accounts, &AccountStore::accountsChanged, &m_list, &ContactListView::reloadSoon);
    connect(&m_list, &ContactListView::read, this, [this] {
        m_notices.read();
        m_avatars.requestMissing(m_list.found());
    });
    connect(&m_list, &ContactListView::changed, this, [this] {
        m_notices.present(m_filter.channelFilter());
        m_palette.setContacts(m_list.found());
    });
    m_person.addPane([this](const ContactRow& contact) { m_reply.open(contact); });
    Composer& composer = *m_reply.composer();
    ThreadView& thread = *m_person.thread();
    connect(thread.history(), &ThreadHistory::refused, &composer, &Composer::setSendError);
    connect(&composer, &Composer::sent, thread.reading(), &ThreadReading::touch);
    m_composerAsked
        = m_notifications.observe(notifications::focusComposer, [&composer](const auto&) { composer.requestFocus(); });
    connect(&m_person, &OpenPerson::selectionChanged, &m_palette, &CommandPalette::refresh);
    connect(&m_palette, &CommandPalette::queryChanged, this, [this] {
        SearchQuery work(m_palette.query().trimmed());
        if (!work.isEmpty())
            work.group = SearchGroup::Work;
        m_paletteWork.find(work);
    });
    connect(&m_paletteWork, &RecordHits::changed, this, [this] { m_palette.setFound(m_paletteWork.records()); });
    connect(&m_palette, &CommandPalette::contactChosen, this,
        [this](const QString& contactId) { m_notifications.post(notifications::openConversation, contactId); });
    connect(&m_palette, &CommandPalette::searchChosen, this, [this](const QString& query) {
        comeToFront();
        m_filter.searchFor(query);
    });
    connect(&m_palette, &CommandPalette::closed, this, [this] { setShowPalette(false); });
    // A running query may change the workspace: the reload waits for the event loop.
    m_workspaceChanged = m_notifications.observe(notifications::activeWorkspaceChanged, [this](const auto&) {
        m_person.close();
        m_list.reloadSoon();
    });
}

void InboxView::setShowPalette(bool show)
{
    if (m_showPalette == show)
        return;
    m_showPalette = show;
    if (show) {
        m_list.catchUp();
        m_palette.open();
    } else {
        m_palette.close();
    }
    Q_EMIT showPaletteChanged();
}

void InboxView::writeNew()
{
    comeToFront();
    m_composeSheet.open();
}

void InboxView::comeToFront()
{
    m_notifications.post(notifications::openWorkConsole, u"inbox"_s);
}

bool InboxView::composeNew(const Account& account, const QString& recipient, const OutgoingMessage& message)
{
    const QString channel = channelRaw(account.channel());
    const QString address = recipientAddress(account.channel(), recipient);
    const QString contact = contactId(channel, address);
    // Without a title they would get the bare address as name, even if their name is known.
    const QString name = contactExists(m_engine.db(), contact) ? displayName(m_engine.db(), contact)
        : account.channel() == Channel::WhatsApp               ? WAName::pretty(address)
                                                               : address;
    const QString conversation
        = ensureConversation(m_engine.db(), channel, account.slug, address, name, m_scheduler.nowMs());
    if (!m_engine.queueDraft(conversation, message, u"compose"_s))
        return false;
    m_engine.db().watch().tell(StoreSubject::Drafts);
    m_engine.bump();
    m_list.reload();
    m_person.select(contact);
    return true;
}

}
