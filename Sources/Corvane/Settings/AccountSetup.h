#pragma once

#include "Settings/ConnectFlow.h"

namespace corvane {

class AccountStore;
class EngineManager;
class Keychain;
struct Account;

/// The last step of every connect sheet. The references outlive the value.
struct AccountSetup {
    AccountStore& accounts;
    EngineManager& engine;
    Keychain& keychain;

    /// Adds the account, stores its secret, and starts its engine.
    Account add(Channel channel, const ConnectRequest& request) const;

    /// Replaces the account's secret, and restarts its engine with it.
    void change(const Account& account, const QString& secret) const;
};

}
