#include "Inbox/ReadMarks.h"

#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"

namespace corvane {

namespace {

const QStringList readAtProvider { u"WHATSAPP"_s, u"EMAIL"_s };

}

void markPersonRead(EngineManager& engine, const AccountStore& accounts, const QString& contactId)
{
    LocalDB& db = engine.db();
    markRead(db, contactId);
    for (const QString& platform : readAtProvider) {
        const auto target = replyTarget(db, contactId, platform);
        const auto account = target ? accounts.findBySlug(target->account) : std::nullopt;
        if (account)
            engine.markRead(*account, target->chatId);
    }
}

}
