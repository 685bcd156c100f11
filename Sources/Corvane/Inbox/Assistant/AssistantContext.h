#pragma once

#include "AI/LumoDraftPrompt.h"
#include "Store/Messages/InboxQueries.h"

#include <QObject>

namespace corvane {

/// A message that an answer cites.
class Citation {
    Q_GADGET
    Q_PROPERTY(QString label MEMBER label)
    Q_PROPERTY(QString messageId MEMBER messageId)
    Q_PROPERTY(QString excerpt MEMBER excerpt)
public:
    QString label; ///< such as "M3"
    QString messageId;
    QString excerpt;

    bool operator==(const Citation&) const = default;
};

// What is known locally about the open person, read at each call.

LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact);
QList<UnifiedMsgRow> localThread(LocalDB& db, const ContactRow& contact); ///< oldest first

/// The cited messages with these labels, as the screen shows them.
QList<Citation> citationChoices(const QList<LocalAIMessageCitation>& citations, const QStringList& labels);

}
