#pragma once

#include "AI/LumoDraftPrompt.h"
#include "Store/Messages/InboxQueries.h"

namespace corvane {

// What is known about the person who gets the reply, read at each call.

/// `name` is the displayed name.
LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact, const QString& name);
QList<UnifiedMsgRow> draftThread(LocalDB& db, const QString& contactId); ///< oldest first

QString defaultDraftStyle();

}
