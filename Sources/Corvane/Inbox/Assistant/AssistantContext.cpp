#include "Inbox/Assistant/AssistantContext.h"

#include "Inbox/List/ContactItem.h"
#include "Store/People/IdentityQueries.h"

namespace corvane {

namespace {

constexpr int threadLimit = 1000; // of which prompts take the newest that say something

std::optional<QString> known(const QString& text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

}

LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact)
{
    const QString id = effectiveContactId(db, contact.id);
    LumoDraftCRMContext context { id, contactName(contact), contact.platforms, {}, fetchNotes(db, id) };
    for (const ContactIdentity& identity : identitiesFor(db, id))
        context.identities.append({ identity.channel, identity.handle, known(identity.email), known(identity.phone) });
    return context;
}

QList<UnifiedMsgRow> localThread(LocalDB& db, const ContactRow& contact)
{
    return fetchUnifiedThread(db, contact.id, threadLimit);
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
