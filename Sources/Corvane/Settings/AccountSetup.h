#pragma once

#include "Settings/ConnectFlow.h"

namespace corvane {

class AccountStore;
class EngineManager;
class Keychain;
struct Account;

/// What every connect sheet ends with. The references outlive the value.
struct AccountSetup {
    AccountStore& accounts;
    EngineManager& engine;
    Keychain& keychain;

    /// Adds the account, keeps its secret, and starts its engine.
    Account add(Channel channel, const ConnectRequest& request) const;

    /// Keeps another secret for the account, and starts its engine anew with it.
    void change(const Account& account, const QString& secret) const;
};

}
