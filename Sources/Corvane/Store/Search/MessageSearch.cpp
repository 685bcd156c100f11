#include "Store/Search/MessageSearch.h"

#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"

namespace corvane {

MessageSearch::MessageSearch(LocalDB& db)
    : m_db(db)
    , m_read(db)
{
}

void MessageSearch::start(const SearchQuery& query, int limit, std::function<void(FoundMessages)> found)
{
    const MessageChanges& changes = m_db.watch().messageChanges();
    const auto changed = changes.isFollowed() ? std::optional(changes.all()) : std::nullopt;
    m_read.start<FoundMessages>(
        [changed, query, limit](SqlConnection& db, const LatestRead::Stopped& stopped) {
            return findMessages(db, query, limit, changed, stopped);
        },
        std::move(found));
}

}
