#pragma once

#include "Engines/Account.h"
#include "Store/Messages/InboxQueries.h"

#include <QSet>

namespace corvane {

class AccountStore;
class EngineManager;

/// Requests missing pictures from WhatsApp, once per person.
class AvatarRequests {
public:
    AvatarRequests(EngineManager& engine, AccountStore& accounts);

    void requestMissing(const QList<ContactRow>& listed);

private:
    std::optional<Account> connected(const QString& slug) const;

    EngineManager& m_engine;
    AccountStore& m_accounts;
    QSet<QString> m_requested; ///< contact ids
};

}
