#pragma once

#include "AI/LumoDraftPrompt.h"
#include "Store/Messages/InboxQueries.h"

#include <QVariantList>

namespace corvane {

// What is known here of the person whose thread is open, read afresh.

LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact);
QList<UnifiedMsgRow> localThread(LocalDB& db, const ContactRow& contact); ///< oldest first

/// Those of `labels`, as a screen shows them: {label, messageId, excerpt}.
QVariantList citationChoices(const QList<LocalAIMessageCitation>& citations, const QStringList& labels);

}
