#include "Inbox/Thread/ThreadHistory.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/Thread/ThreadWindow.h"

namespace corvane {

namespace {

constexpr int olderCount = 50;
constexpr Milliseconds loadingMoreTime { 4000 };
const QString whatsApp = u"WHATSAPP"_s;

}

ThreadHistory::ThreadHistory(
    EngineManager& engine, AccountStore& accounts, Scheduler& scheduler, const ThreadWindow& window, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
    , m_accounts(accounts)
    , m_scheduler(scheduler)
    , m_window(window)
{
}

void ThreadHistory::open(const ContactRow& contact)
{
    if (std::exchange(m_contactId, contact.id) != contact.id)
        m_loadingMore.reset();
    m_onWhatsApp = contact.platforms.contains(whatsApp);
}

bool ThreadHistory::canLoadOlder() const
{
    return m_onWhatsApp && !m_window.hasOlder();
}

QString ThreadHistory::loadOlderText() const
{
    return loadingMore() ? u"Loading older messages…"_s : u"Load older messages"_s;
}

void ThreadHistory::loadMore()
{
    if (loadingMore() || !canLoadOlder())
        return;
    m_loadingMore = m_scheduler.after(loadingMoreTime, [this] {
        m_loadingMore.reset();
        Q_EMIT changed();
    });
    Q_EMIT changed();
    const auto target = replyTarget(m_engine.db(), m_contactId, whatsApp);
    if (!target) {
        Q_EMIT refused(u"No %1 conversation for this contact"_s.arg(channelLabel(whatsApp)));
        return;
    }
    const auto account = m_accounts.findBySlug(target->account);
    if (!account || !m_engine.loadMoreHistory(*account, target->chatId, olderCount))
        Q_EMIT refused(u"Account %1 is not connected"_s.arg(target->account));
}

}
