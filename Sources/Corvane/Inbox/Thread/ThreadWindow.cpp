#include "Inbox/Thread/ThreadWindow.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype capacity = 3 * ThreadWindow::pageSize;

ThreadPlace placeOf(const UnifiedMsgRow& message)
{
    return { message.ts, message.id };
}

}

void ThreadWindow::open(const QString& contactId)
{
    m_contactId = contactId;
    m_messages.clear();
    m_hasOlder = false;
    m_hasNewer = false;
}

QList<UnifiedMsgRow> ThreadWindow::page(Towards towards, const ThreadPlace& from, qsizetype limit) const
{
    return m_contactId.isEmpty() ? QList<UnifiedMsgRow>()
                                 : fetchThreadPage(m_db, m_contactId, towards, from, int(limit));
}

void ThreadWindow::showNewest()
{
    m_messages = page(Towards::Older, threadEnd, pageSize);
    m_hasOlder = m_messages.size() == pageSize;
    m_hasNewer = false;
}

void ThreadWindow::showOldest()
{
    m_messages = page(Towards::Newer, threadBeginning, pageSize);
    m_hasOlder = false;
    m_hasNewer = m_messages.size() == pageSize;
}

bool ThreadWindow::showAround(const QString& messageId)
{
    const auto place = placeInThread(m_db, m_contactId, messageId);
    if (!place)
        return false;
    constexpr qsizetype half = pageSize / 2;
    const QList<UnifiedMsgRow> before = page(Towards::Older, *place, half);
    const QList<UnifiedMsgRow> rest
        = page(Towards::Newer, before.isEmpty() ? threadBeginning : placeOf(before.last()), half);
    m_messages = before + rest;
    m_hasOlder = before.size() == half;
    m_hasNewer = rest.size() == half;
    return true;
}

void ThreadWindow::extend(Towards towards)
{
    if (m_messages.isEmpty())
        return;
    const bool older = towards == Towards::Older;
    const QList<UnifiedMsgRow> more = page(towards, placeOf(older ? m_messages.first() : m_messages.last()), pageSize);
    (older ? m_hasOlder : m_hasNewer) = more.size() == pageSize;
    m_messages = older ? more + m_messages : m_messages + more;
    const qsizetype excess = m_messages.size() - capacity;
    if (excess <= 0)
        return;
    m_messages.remove(older ? capacity : 0, excess);
    (older ? m_hasNewer : m_hasOlder) = true;
}

void ThreadWindow::refresh(Reader reader)
{
    if (m_messages.isEmpty() || (reader == Reader::AtNewest && !m_hasNewer))
        return showNewest();
    readAgain();
    if (m_messages.isEmpty())
        showNewest();
    else if (!m_hasOlder)
        takeHistory();
}

void ThreadWindow::readAgain()
{
    // From before the first, to include it and others of its millisecond.
    const qsizetype limit = m_hasNewer ? m_messages.size() : capacity;
    m_messages = page(Towards::Newer, { m_messages.first().ts, {} }, limit);
    m_hasNewer = m_messages.size() == limit && !page(Towards::Newer, placeOf(m_messages.last()), 1).isEmpty();
}

void ThreadWindow::takeHistory()
{
    const QList<UnifiedMsgRow> earlier = page(Towards::Older, placeOf(m_messages.first()), pageSize);
    const bool fits = m_messages.size() + earlier.size() <= capacity;
    m_hasOlder = fits ? earlier.size() == pageSize : true;
    if (fits)
        m_messages = earlier + m_messages;
}

}
