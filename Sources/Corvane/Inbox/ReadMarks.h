#pragma once

#include <QString>

namespace corvane {

class AccountStore;
class EngineManager;

/// Marks what they wrote as read, in the store and where the channel is told of it.
void markPersonRead(EngineManager& engine, const AccountStore& accounts, const QString& contactId);

}
