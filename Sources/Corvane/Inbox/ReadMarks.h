#pragma once

#include <QString>

namespace corvane {

class AccountStore;
class EngineManager;

/// Marks a person's messages as read, locally and at the channel if it supports that.
void markPersonRead(EngineManager& engine, const AccountStore& accounts, const QString& contactId);

}
