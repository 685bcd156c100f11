#pragma once

#include "Store/Messages/InboxQueries.h"

namespace corvane {

class UserDefaults;

/// The reply channel for the contact: the remembered one while the contact still has it, else the contact's first.
QString preferredReplyPlatform(const UserDefaults& defaults, const ContactRow& contact);

/// After sending; no effect if the contact has no such channel.
void rememberReplyPlatform(UserDefaults& defaults, const QString& platform, const ContactRow& contact);

}
