// What a person does with the list: opening, archiving, muting, reading.

#include "Inbox/List/InboxView.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Ids.h"
#include "Presentation/WAName.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

const QString whatsApp = QStringLiteral("WHATSAPP");
constexpr Milliseconds openingTime { 60 };

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
    return listed == m_contacts.end() ? fetchContact(db(), contactId) : std::optional(*listed);
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
    m_palette.setHasSelection(true);
    tellWhatIsOpen();
    openPanes(m_selectedRow);
    m_reloadAfterOpening = m_scheduler.after(openingTime, [this] { m_reloadSoon.request(); });
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
    m_palette.setHasSelection(false);
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

void InboxView::jumpTo(const QString& messageId)
{
    if (!m_thread.show(messageId))
        return;
    m_jumpMsgId = messageId;
    Q_EMIT jumped();
}

bool InboxView::composeNew(const Account& account, const QString& recipient, const QString& text)
{
    const QString channel = channelRaw(account.channel());
    const QString address = recipientAddress(account.channel(), recipient);
    const QString contact = contactId(channel, address);
    // Without a title they would be called by the bare address, even if they are known by name.
    const QString name = contactExists(db(), contact) ? displayName(db(), contact)
        : account.channel() == Channel::WhatsApp      ? WAName::pretty(address)
                                                      : address;
    const QString conversation = ensureConversation(db(), channel, account.slug, address, name, m_scheduler.nowMs());
    if (!queueDraft(db(), conversation, text, QStringLiteral("compose")))
        return false;
    m_engine.refreshDrafts();
    m_engine.bump();
    reload();
    select(contact);
    return true;
}

void InboxView::setOnScreen(bool onScreen)
{
    if (m_onScreen == onScreen)
        return;
    m_onScreen = onScreen;
    tellWhatIsOpen();
    m_thread.reading()->setOnScreen(onScreen);
    if (onScreen)
        m_reloadSoon.request();
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
    if (show)
        m_palette.open();
    else
        m_palette.close();
    Q_EMIT showPaletteChanged();
}

void InboxView::runPaletteAction(PaletteAction action)
{
    switch (action) {
    case PaletteAction::ArchiveCurrent:
        archiveSelected();
        break;
    case PaletteAction::MuteCurrent:
        muteSelected();
        break;
    case PaletteAction::ToggleCRM:
        setShowCRM(!m_showCRM);
        break;
    case PaletteAction::MarkAllRead:
        markAllRead();
        break;
    case PaletteAction::OpenApprovals:
        m_notifications.post(notifications::openApprovals);
        break;
    }
}

void InboxView::afterAction()
{
    reload();
    m_engine.refreshUnreadBadge();
}

void InboxView::archiveSelected()
{
    if (!m_selectedId.isEmpty())
        archive({ m_selectedId }, QStringLiteral("Archived ") + m_selected.name);
}

void InboxView::archiveChecked()
{
    const QStringList ids = m_bulk.ids();
    if (ids.size() == 1)
        archive(ids, QStringLiteral("Archived 1 conversation"));
    else if (!ids.isEmpty())
        archive(ids, QStringLiteral("Archived %1 conversations").arg(ids.size()));
}

void InboxView::archive(const QStringList& contactIds, const QString& text)
{
    for (const QString& contactId : contactIds)
        archiveContact(db(), contactId);
    if (contactIds.contains(m_selectedId))
        close();
    m_bulk.clear();
    m_undo.offer(text, [this, contactIds] {
        for (const QString& contactId : contactIds)
            unarchiveContact(db(), contactId);
        afterAction();
    });
    afterAction();
}

void InboxView::unarchive(const QString& contactId)
{
    unarchiveContact(db(), contactId);
    afterAction();
}

void InboxView::muteSelected()
{
    if (m_selectedId.isEmpty())
        return;
    setMuted(db(), m_selectedId, !isMuted(db(), m_selectedId));
    afterAction();
}

void InboxView::muteChecked()
{
    const QStringList ids = m_bulk.ids();
    const bool mute = std::ranges::any_of(ids, [this](const QString& id) { return !isMuted(db(), id); });
    for (const QString& id : ids)
        setMuted(db(), id, mute);
    m_bulk.clear();
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
    const auto target = replyTarget(db(), contactId, whatsApp);
    const auto account = target ? m_accounts.findBySlug(target->account) : std::nullopt;
    if (account)
        m_engine.markRead(*account, target->chatId);
}

void InboxView::readSelected()
{
    if (m_selectedRow.unread == 0)
        return;
    tellRead(m_selectedId);
    m_selectedRow.unread = 0;
    const auto row = std::ranges::find(m_contacts, m_selectedId, &ContactRow::id);
    if (row != m_contacts.end())
        row->unread = 0;
    m_engine.refreshUnreadBadge();
    present();
    m_reloadSoon.request(); // who is read may leave the list, and the counts of its tabs
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
