#include "Inbox/List/ListActions.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/List/ListFilter.h"
#include "Inbox/OpenPerson.h"
#include "Inbox/ReadMarks.h"
#include "Presentation/UndoOffer.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>

namespace corvane {

namespace {

QString countedConversations(qsizetype count)
{
    return count == 1 ? u"1 conversation"_s : u"%1 conversations"_s.arg(count);
}

}

ListActions::ListActions(const Surroundings& at, QObject* parent)
    : QObject(parent)
    , m_engine(at.engine)
    , m_accounts(at.accounts)
    , m_filter(at.filter)
    , m_bulk(at.bulk)
    , m_list(at.list)
    , m_person(at.person)
    , m_undo(at.undo)
{
    connect(&m_filter, &ListFilter::filterChanged, this, &ListActions::archiveChanged);
    connect(m_person.crm(), &CRMPane::peopleChanged, this, &ListActions::afterAction);
}

LocalDB& ListActions::db() const
{
    return m_engine.db();
}

bool ListActions::unarchives() const
{
    return m_filter.state().filter == InboxFilter::Archived;
}

QStringList ListActions::selected() const
{
    return m_person.selectedId().isEmpty() ? QStringList() : QStringList(m_person.selectedId());
}

const QString& ListActions::undoText() const
{
    return m_undo.text();
}

void ListActions::undo()
{
    m_undo.take();
}

void ListActions::dismissUndo()
{
    m_undo.dismiss();
}

QString ListActions::nameOf(const QString& contactId) const
{
    const auto row = m_list.rowOf(contactId);
    return row ? contactName(*row) : displayName(db(), contactId);
}

void ListActions::afterAction()
{
    m_list.reload();
    m_engine.refreshUnreadBadge();
}

void ListActions::archive(const QStringList& contactIds)
{
    if (contactIds.isEmpty())
        return;
    const bool out = unarchives();
    const bool picked = contactIds.size() > 1 || m_bulk.active();
    const QString whom = picked ? countedConversations(contactIds.size()) : nameOf(contactIds.first());
    const auto before = fetchArchived(db(), contactIds);
    if (!setArchived(db(), contactIds, !out))
        return;
    if (contactIds.contains(m_person.selectedId()))
        m_person.close();
    m_bulk.clear();
    m_undo.offer((out ? u"Unarchived "_s : u"Archived "_s) + whom, [this, before] {
        restoreArchived(db(), before);
        afterAction();
    });
    afterAction();
}

void ListActions::mute(const QStringList& contactIds)
{
    const bool mute = std::ranges::any_of(contactIds, [this](const QString& id) { return !isMuted(db(), id); });
    for (const QString& id : contactIds)
        setMuted(db(), id, mute);
    m_bulk.clear();
    afterAction();
}

void ListActions::toggleRead(const QString& contactId)
{
    const auto row = m_list.rowOf(contactId);
    if (row && row->unread > 0) {
        markPersonRead(m_engine, m_accounts, contactId);
    } else {
        markUnread(db(), contactId);
        if (contactId == m_person.selectedId())
            m_person.close(); // an open thread would count as read
    }
    afterAction();
}

void ListActions::markAllRead()
{
    corvane::markAllRead(db());
    afterAction();
}

void ListActions::markCheckedRead()
{
    for (const QString& id : m_bulk.ids())
        markPersonRead(m_engine, m_accounts, id);
    m_bulk.clear();
    afterAction();
}

}
