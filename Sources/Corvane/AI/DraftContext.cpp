#include "AI/DraftContext.h"

#include "Foundation/Literals.h"
#include "Store/People/IdentityQueries.h"

namespace corvane {

namespace {

constexpr int threadLimit = 1000; // prompts take the newest with text

std::optional<QString> known(const QString& text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

}

LumoDraftCRMContext draftContext(LocalDB& db, const ContactRow& contact, const QString& name)
{
    const QString id = effectiveContactId(db, contact.id);
    LumoDraftCRMContext context { id, name, contact.platforms, {}, fetchNotes(db, id) };
    for (const ContactIdentity& identity : identitiesFor(db, id))
        context.identities.append({ identity.channel, identity.handle, known(identity.email), known(identity.phone) });
    return context;
}

QList<UnifiedMsgRow> draftThread(LocalDB& db, const QString& contactId)
{
    return fetchUnifiedThread(db, contactId, threadLimit);
}

QString defaultDraftStyle()
{
    return u"Warm, concise, grounded, natural"_s;
}

}
