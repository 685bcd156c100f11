#include "Settings/AccountSetup.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Engines/EngineSpec.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Keychain.h"

namespace corvane {

namespace {

void keep(Keychain& keychain, const QString& secret, const Account& account)
{
    if (!keychain.set(secret, account.slug))
        log(u"AccountSetup: the secret of %1 could not be kept"_s.arg(account.slug));
}

}

Account AccountSetup::add(Channel channel, const ConnectRequest& request) const
{
    Account account = accounts.add(request.name, channel);
    account.email = request.email;
    if (keepsSecret(channel))
        account.startAtBoot = true; // a new account should still run after a restart
    accounts.update(account);
    if (request.secret)
        keep(keychain, *request.secret, account);
    engine.start(account);
    return account;
}

void AccountSetup::change(const Account& account, const QString& secret) const
{
    engine.stop(account);
    keep(keychain, secret, account);
    engine.resume(account);
}

}
