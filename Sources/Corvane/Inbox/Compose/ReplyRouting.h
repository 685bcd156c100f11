#pragma once

#include "Store/Messages/InboxQueries.h"

namespace corvane {

class UserDefaults;

/// The channel that a reply to the contact goes to: the remembered one while the contact still has it, else the
/// contact's first.
QString preferredReplyPlatform(const UserDefaults& defaults, const ContactRow& contact);

/// After a send; no effect where the contact has no such channel.
void rememberReplyPlatform(UserDefaults& defaults, const QString& platform, const ContactRow& contact);

}
