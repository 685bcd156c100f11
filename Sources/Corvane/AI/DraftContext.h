#pragma once

#include "AI/LumoDraftPrompt.h"
#include "Store/Messages/InboxQueries.h"

namespace corvane {

// What is known here of the person who is answered, read afresh.

/// `name` as a screen shows it.
LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact, const QString& name);
QList<UnifiedMsgRow> draftThread(LocalDB& db, const QString& contactId); ///< oldest first

QString defaultDraftStyle();

}
