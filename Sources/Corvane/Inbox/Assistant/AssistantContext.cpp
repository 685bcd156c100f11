#include "Inbox/Assistant/AssistantContext.h"

#include "AI/DraftContext.h"
#include "Inbox/List/ContactItem.h"

namespace corvane {

LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact)
{
    return corvane::draftContext(db, contact, contactName(contact));
}

QList<UnifiedMsgRow> localThread(LocalDB& db, const ContactRow& contact)
{
    return draftThread(db, contact.id);
}

QList<Citation> citationChoices(const QList<LocalAIMessageCitation>& citations, const QStringList& labels)
{
    QList<Citation> choices;
    for (const LocalAIMessageCitation& citation : citations) {
        if (labels.contains(citation.label))
            choices.append({ citation.label, citation.id, citation.excerpt });
    }
    return choices;
}

}
