#include "Inbox/List/AvatarRequests.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"

namespace corvane {

AvatarRequests::AvatarRequests(EngineManager& engine, AccountStore& accounts)
    : m_engine(engine)
    , m_accounts(accounts)
{
}

void AvatarRequests::requestMissing(const QList<ContactRow>& listed)
{
    static const QString prefix = QStringLiteral("ct:WHATSAPP:");
    for (const ContactRow& row : listed) {
        if (!row.avatarPath.isEmpty() || !row.platforms.contains(u"WHATSAPP") || !row.id.startsWith(prefix))
            continue;
        const QString jid = row.id.sliced(prefix.size());
        if (m_requested.contains(jid))
            continue;
        const auto account = m_accounts.findBySlug(row.account);
        if (!account || account->channel() != Channel::WhatsApp)
            continue;
        // An engine that is not connected yet is asked later.
        const bool connected = m_engine.runtime(account->id).status == WAStatus::Connected;
        if (connected && m_engine.fetchAvatar(*account, jid))
            m_requested.insert(jid);
    }
}

}
