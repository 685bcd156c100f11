#include "Store/Search/MessageSearch.h"

#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Search/SearchIndex.h"

namespace corvane {

MessageSearch::MessageSearch(LocalDB& db)
    : m_db(db)
{
}

MessageSearch::~MessageSearch()
{
    stop();
}

void MessageSearch::start(const QString& query, int limit, std::function<void(FoundMessages)> found)
{
    stop();
    m_stopped = std::make_shared<std::atomic<bool>>(false);
    const MessageChanges& changes = m_db.watch().messageChanges();
    const QString path = m_db.isOpen() ? m_db.path() : QString();
    const QString indexPath = changes.isFollowed() ? SearchIndex::pathBeside(path) : QString();
    m_queue.run<FoundMessages>(
        [path, indexPath, changed = changes.all(), query, limit, stopped = m_stopped] {
            if (path.isEmpty() || stopped->load())
                return FoundMessages();
            const auto reader = SqlConnection::reader(path, stopped);
            std::optional<int> percent;
            if (!indexPath.isEmpty()) {
                const auto index = SqlConnection::reader(indexPath, stopped);
                if (const auto hits = searchByIndex(*reader, *index, query, limit, changed))
                    return FoundMessages { *hits, {} };
                percent = percentBuilt(*index);
            }
            return FoundMessages { searchMessages(*reader, query, limit), percent };
        },
        [found = std::move(found), stopped = m_stopped](FoundMessages result) {
            if (!stopped->load())
                found(std::move(result));
        });
}

void MessageSearch::stop()
{
    if (m_stopped)
        m_stopped->store(true);
}

}
