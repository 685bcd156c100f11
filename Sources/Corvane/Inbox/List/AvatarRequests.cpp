#include "Inbox/List/AvatarRequests.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"

namespace corvane {

AvatarRequests::AvatarRequests(EngineManager& engine, AccountStore& accounts)
    : m_engine(engine)
    , m_accounts(accounts)
{
}

void AvatarRequests::requestMissing(const QList<ContactRow>& listed)
{
    static const QString prefix = u"ct:WHATSAPP:"_s;
    QHash<QString, std::optional<Account>> accounts; // looked up once per account
    for (const ContactRow& row : listed) {
        if (!row.avatarPath.isEmpty() || m_requested.contains(row.id) || !row.id.startsWith(prefix)
            || !row.platforms.contains(u"WHATSAPP"))
            continue;
        if (!accounts.contains(row.account))
            accounts.insert(row.account, connected(row.account));
        const auto& account = accounts[row.account];
        if (account && m_engine.fetchAvatar(*account, row.id.sliced(prefix.size())))
            m_requested.insert(row.id);
    }
}

// An engine that is not connected yet is asked later.
std::optional<Account> AvatarRequests::connected(const QString& slug) const
{
    const auto account = m_accounts.findBySlug(slug);
    const bool usable = account && account->channel() == Channel::WhatsApp
        && m_engine.runtime(account->id).status == WAStatus::Connected;
    return usable ? account : std::nullopt;
}

}
