#include "Store/Search/MessageSearch.h"

#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Search/IndexedSearch.h"
#include "Store/Search/SearchIndex.h"

namespace corvane {

MessageSearch::MessageSearch(LocalDB& db)
    : m_db(db)
    , m_read(db)
{
}

void MessageSearch::start(const SearchQuery& query, int limit, std::function<void(FoundMessages)> found)
{
    const MessageChanges& changes = m_db.watch().messageChanges();
    const QString indexPath = changes.isFollowed() ? SearchIndex::pathBeside(m_db.path()) : QString();
    m_read.start<FoundMessages>(
        [indexPath, changed = changes.all(), query, limit](SqlConnection& db, const LatestRead::Stopped& stopped) {
            FoundMessages found;
            if (!indexPath.isEmpty()) {
                const auto index = SqlConnection::reader(indexPath, stopped);
                if (const auto hits = searchByIndex(db, *index, query, limit, changed)) {
                    found.hits = *hits;
                    return found;
                }
                found.indexPercent = percentBuilt(*index);
            }
            found.hits = searchMessages(db, query, limit);
            found.failed = db.failure() != 0;
            return found;
        },
        std::move(found));
}

}
