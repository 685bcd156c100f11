// What a person does with the list: opening, archiving, muting, reading.

#include "Inbox/List/InboxView.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Ids.h"
#include "Presentation/WAName.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

const QStringList readAtProvider { QStringLiteral("WHATSAPP"), QStringLiteral("EMAIL") };
constexpr Milliseconds openingTime { 60 };

QString countedConversations(qsizetype count)
{
    return count == 1 ? QStringLiteral("1 conversation") : QStringLiteral("%1 conversations").arg(count);
}

}

int InboxView::selectedIndex() const
{
    const auto& rows = m_contactModel.rows();
    const auto found = std::ranges::find(rows, m_selectedId, &ContactItem::id);
    return m_selectedId.isEmpty() || found == rows.end() ? -1 : int(found - rows.begin());
}

std::optional<ContactRow> InboxView::rowOf(const QString& contactId) const
{
    const auto listed = std::ranges::find(m_contacts, contactId, &ContactRow::id);
    const bool current = listed != m_contacts.end() && !m_allDue && !m_peopleDue.contains(contactId);
    return current ? std::optional(*listed) : fetchContact(db(), contactId);
}

QString InboxView::nameOf(const QString& contactId)
{
    const auto row = rowOf(contactId);
    return row ? contactName(*row) : displayName(db(), contactId);
}

void InboxView::select(const QString& contactId)
{
    if (contactId.isEmpty()) {
        close();
        present();
        return;
    }
    const QString person = personBehind(db(), contactId);
    if (const auto known = rowOf(person)) {
        openContact(*known);
        return;
    }
    // Of another workspace, or nobody wrote yet: the id tells what a row would.
    ContactRow row;
    row.id = person;
    row.name = contactExists(db(), person) ? displayName(db(), person) : person.section(u':', 2);
    row.platforms = QStringList { person.section(u':', 1, 1) };
    openContact(row);
}

// Shows the person at once; the list is read again when they stand on the screen and no further one was opened.
void InboxView::openContact(const ContactRow& row)
{
    m_selectedRow = row;
    m_selectedId = row.id;
    m_jumpMsgId.clear();
    m_palette.refresh();
    tellWhatIsOpen();
    openPanes(m_selectedRow);
    m_reloadAfterOpening = m_scheduler.after(openingTime, [this] { personChanged(m_selectedId); });
    present();
    Q_EMIT selectionChanged();
}

void InboxView::close()
{
    if (m_selectedId.isEmpty())
        return;
    m_selectedId.clear();
    m_selectedRow = {};
    m_jumpMsgId.clear();
    m_palette.refresh();
    tellWhatIsOpen();
    openPanes({});
    Q_EMIT selectionChanged();
}

void InboxView::openPanes(const ContactRow& row)
{
    m_thread.open(row, row.unread);
    m_composer.open(row);
    m_assistant.open(row);
    m_summary.open(row);
    m_askLumo.open(row);
    m_crm.open(row);
}

void InboxView::tellWhatIsOpen()
{
    m_engine.setOpenContactId(m_onScreen ? m_selectedId : QString());
}

void InboxView::moveSelection(int delta)
{
    const auto& rows = m_contactModel.rows();
    if (rows.isEmpty() || delta == 0)
        return;
    // Where the open row has left the list, the one below stands in its place.
    const int current = selectedIndex();
    const int step = current < 0 && delta > 0 ? delta - 1 : delta;
    const int target = std::clamp((current < 0 ? m_selectedPlace : current) + step, 0, int(rows.size()) - 1);
    if (target != current)
        select(QString(rows.at(target).id));
}

void InboxView::openHit(const QString& messageId)
{
    const auto& hits = m_hits.rows();
    const auto hit = std::ranges::find(hits, messageId, &MessageHitItem::id);
    if (hit == hits.end())
        return;
    select(QString(hit->contactId));
    jumpTo(messageId);
}

void InboxView::openVoiceSettings()
{
    m_notifications.post(notifications::openSettings, QStringLiteral("voice"));
}

void InboxView::jumpTo(const QString& messageId)
{
    if (!m_thread.show(messageId, m_search))
        return;
    m_jumpMsgId = messageId;
    Q_EMIT jumped();
}

bool InboxView::composeNew(const Account& account, const QString& recipient, const OutgoingMessage& message)
{
    const QString channel = channelRaw(account.channel());
    const QString address = recipientAddress(account.channel(), recipient);
    const QString contact = contactId(channel, address);
    // Without a title they would be called by the bare address, even if they are known by name.
    const QString name = contactExists(db(), contact) ? displayName(db(), contact)
        : account.channel() == Channel::WhatsApp      ? WAName::pretty(address)
                                                      : address;
    const QString conversation = ensureConversation(db(), channel, account.slug, address, name, m_scheduler.nowMs());
    if (!m_engine.queueDraft(conversation, message, QStringLiteral("compose")))
        return false;
    db().watch().tell(StoreSubject::Drafts);
    m_engine.bump();
    reload();
    select(contact);
    return true;
}

void InboxView::setShown(bool shown)
{
    if (m_shown == shown)
        return;
    m_shown = shown;
    if (shown)
        m_reloadSoon.request();
    Q_EMIT shownChanged();
}

void InboxView::setOnScreen(bool onScreen)
{
    if (m_onScreen == onScreen)
        return;
    m_onScreen = onScreen;
    tellWhatIsOpen();
    m_thread.reading()->setOnScreen(onScreen);
    if (onScreen && !m_selectedId.isEmpty())
        personChanged(m_selectedId);
    Q_EMIT onScreenChanged();
}

void InboxView::setShowCRM(bool show)
{
    if (m_showCRM == show)
        return;
    m_showCRM = show;
    Q_EMIT showCRMChanged();
}

void InboxView::setShowPalette(bool show)
{
    if (m_showPalette == show)
        return;
    m_showPalette = show;
    if (show) {
        catchUp();
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
    m_notifications.post(notifications::openWorkConsole, QStringLiteral("inbox"));
}

void InboxView::searchFor(const QString& query)
{
    comeToFront();
    InboxState state = asTyped();
    state.search = query;
    narrow(state);
}

void InboxView::afterAction()
{
    reload();
    m_engine.refreshUnreadBadge();
}

void InboxView::archive(const QStringList& contactIds)
{
    if (contactIds.isEmpty())
        return;
    const bool out = unarchives();
    const bool picked = contactIds.size() > 1 || m_bulk.active();
    const QString whom = picked ? countedConversations(contactIds.size()) : nameOf(contactIds.first());
    const auto before = fetchArchived(db(), contactIds);
    if (!setArchived(db(), contactIds, !out))
        return;
    if (contactIds.contains(m_selectedId))
        close();
    m_bulk.clear();
    m_undo.offer((out ? QStringLiteral("Unarchived ") : QStringLiteral("Archived ")) + whom, [this, before] {
        restoreArchived(db(), before);
        afterAction();
    });
    afterAction();
}

void InboxView::mute(const QStringList& contactIds)
{
    const bool mute = std::ranges::any_of(contactIds, [this](const QString& id) { return !isMuted(db(), id); });
    for (const QString& id : contactIds)
        setMuted(db(), id, mute);
    m_bulk.clear();
    afterAction();
}

void InboxView::toggleRead(const QString& contactId)
{
    const auto row = rowOf(contactId);
    if (row && row->unread > 0) {
        tellRead(contactId);
    } else {
        markUnread(db(), contactId);
        if (contactId == m_selectedId)
            close(); // what is open counts as read
    }
    afterAction();
}

void InboxView::markAllRead()
{
    corvane::markAllRead(db());
    afterAction();
}

void InboxView::markCheckedRead()
{
    for (const QString& id : m_bulk.ids())
        tellRead(id);
    m_bulk.clear();
    afterAction();
}

void InboxView::tellRead(const QString& contactId)
{
    markRead(db(), contactId);
    for (const QString& platform : readAtProvider) {
        const auto target = replyTarget(db(), contactId, platform);
        const auto account = target ? m_accounts.findBySlug(target->account) : std::nullopt;
        if (account)
            m_engine.markRead(*account, target->chatId);
    }
}

void InboxView::readSelected()
{
    if (m_selectedRow.unread == 0)
        return;
    tellRead(m_selectedId);
    m_counts.forget({ m_selectedId });
    m_selectedRow.unread = 0;
    m_rows.setRead(m_selectedId);
    const auto row = std::ranges::find(m_contacts, m_selectedId, &ContactRow::id);
    if (row != m_contacts.end())
        row->unread = 0;
    m_engine.refreshUnreadBadge();
    present();
    personChanged(m_selectedId); // who is read may leave the list, and the counts of its tabs
}

void InboxView::retry(const QString& channel)
{
    if (!webOnlyChannels.contains(channel))
        return;
    m_webMirror.retry(db());
    presentBanners();
}

void InboxView::dismissWorkspaceNotice()
{
    m_workspaceNotice.clear();
    Q_EMIT workspaceNoticeChanged();
}

}
