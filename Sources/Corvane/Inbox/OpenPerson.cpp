#include "Inbox/OpenPerson.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/ReadMarks.h"
#include "Presentation/UndoOffer.h"
#include "Store/People/IdentityQueries.h"

namespace corvane {

namespace {

constexpr Milliseconds openingTime { 60 };

}

OpenPerson::OpenPerson(const Surroundings& at, ContactListView& list, UndoOffer& undo, QObject* parent)
    : QObject(parent)
    , m_engine(at.engine)
    , m_accounts(at.accounts)
    , m_notifications(at.notifications)
    , m_scheduler(at.scheduler)
    , m_list(list)
    , m_thread(m_engine, m_accounts, m_scheduler)
    , m_crm(m_engine.db(), m_scheduler)
    , m_messageActions({ m_engine, m_accounts, at.desktop, m_scheduler, m_thread, undo,
          [this] {
              return m_list.people();
          } }) // a search does not limit the recipients
    , m_voicePlayer(at.player, m_thread, m_engine)
    , m_transcripts(at.voice, m_thread, m_engine, at.defaults)
{
    connect(&m_list, &ContactListView::read, this, &OpenPerson::take);
    connect(&m_list, &ContactListView::changed, this, &OpenPerson::present);
    connect(m_thread.reading(), &ThreadReading::read, this, &OpenPerson::readSelected);
    connect(&m_transcripts, &VoiceTranscripts::speakingChanged, this, [this] {
        if (!m_transcripts.speakingId().isEmpty())
            m_voicePlayer.stop();
    });
    connect(&m_crm, &CRMPane::undoable, this,
        [&undo](const QString& text, const std::function<void()>& back) { undo.offer(text, back); });
    connect(&m_messageActions, &MessageActions::messagesChanged, this, [this] { m_list.personChanged(m_selectedId); });
    m_conversationAsked
        = m_notifications.observe(notifications::openConversation, [this](const Notification& notification) {
              if (notification.object && !notification.object->isEmpty())
                  select(*notification.object);
          });
}

OpenPerson::~OpenPerson() = default;

LocalDB& OpenPerson::db() const
{
    return m_engine.db();
}

void OpenPerson::setOnScreen(bool onScreen)
{
    if (m_onScreen == onScreen)
        return;
    m_onScreen = onScreen;
    tellWhatIsOpen();
    m_thread.reading()->setOnScreen(onScreen);
    if (onScreen && !m_selectedId.isEmpty())
        m_list.personChanged(m_selectedId);
    Q_EMIT onScreenChanged();
}

void OpenPerson::setShowCRM(bool show)
{
    if (m_showCRM == show)
        return;
    m_showCRM = show;
    Q_EMIT showCRMChanged();
}

void OpenPerson::select(const QString& contactId)
{
    if (contactId.isEmpty()) {
        close();
        m_list.present();
        return;
    }
    const QString person = personBehind(db(), contactId);
    if (const auto known = m_list.rowOf(person)) {
        openContact(*known);
        return;
    }
    // In another workspace, or without messages: derived from the id.
    ContactRow row;
    row.id = person;
    row.name = contactExists(db(), person) ? displayName(db(), person) : person.section(u':', 2);
    row.platforms = QStringList { person.section(u':', 1, 1) };
    openContact(row);
}

// Opens the contact before the list reloads, and reloads only if no other one was opened meanwhile.
void OpenPerson::openContact(const ContactRow& row)
{
    m_selectedRow = row;
    m_selectedId = row.id;
    m_jumpMsgId.clear();
    m_list.setOpen(row.id);
    tellWhatIsOpen();
    openPanes(m_selectedRow);
    m_reloadAfterOpening = m_scheduler.after(openingTime, [this] { m_list.personChanged(m_selectedId); });
    m_list.present();
    Q_EMIT selectionChanged();
}

void OpenPerson::close()
{
    if (m_selectedId.isEmpty())
        return;
    m_selectedId.clear();
    m_selectedRow = {};
    m_jumpMsgId.clear();
    m_list.setOpen({});
    tellWhatIsOpen();
    openPanes({});
    Q_EMIT selectionChanged();
}

void OpenPerson::openPanes(const ContactRow& row)
{
    m_thread.open(row, row.unread);
    m_crm.open(row);
    for (const Pane& open : std::as_const(m_panes))
        open(row);
}

void OpenPerson::tellWhatIsOpen()
{
    m_engine.setOpenContactId(m_onScreen ? m_selectedId : QString());
}

void OpenPerson::take(const std::optional<QStringList>& contactIds)
{
    if (m_selectedId.isEmpty() || (contactIds && !contactIds->contains(m_selectedId)))
        return;
    // Merged into someone else meanwhile, maybe by another program: opens that person.
    if (const QString person = personBehind(db(), m_selectedId); person != m_selectedId) {
        select(person);
        return;
    }
    if (const auto row = m_list.rowOf(m_selectedId))
        m_selectedRow = *row;
    openPanes(m_selectedRow);
    if (m_thread.reading()->isRead())
        readSelected();
}

void OpenPerson::present()
{
    const ContactItem selected = m_selectedId.isEmpty() ? ContactItem() : m_list.item(m_selectedRow);
    if (selected == m_selected)
        return;
    m_selected = selected;
    Q_EMIT selectedChanged();
}

void OpenPerson::moveSelection(int delta)
{
    if (const QString next = m_list.neighbour(delta); !next.isEmpty())
        select(next);
}

void OpenPerson::openHit(const QString& messageId)
{
    const QString person = m_list.results()->personOf(messageId);
    if (person.isEmpty())
        return;
    select(person);
    jumpTo(messageId);
}

void OpenPerson::showInPane(const QString& section, const QString& id)
{
    if (section == "notes"_L1)
        m_crm.showNote(id);
    Q_EMIT paneAsked(section);
}

void OpenPerson::openVoiceSettings()
{
    m_notifications.post(notifications::openSettings, u"voice"_s);
}

void OpenPerson::jumpTo(const QString& messageId)
{
    if (!m_thread.show(messageId, m_list.results()->words()))
        return;
    m_jumpMsgId = messageId;
    Q_EMIT jumped();
}

void OpenPerson::readSelected()
{
    if (m_selectedRow.unread == 0)
        return;
    markPersonRead(m_engine, m_accounts, m_selectedId);
    m_selectedRow.unread = 0;
    m_list.setRead(m_selectedId);
    m_engine.refreshUnreadBadge();
    m_list.present();
    m_list.personChanged(m_selectedId); // reading may change the person's filters and the tab counts
}

}
