#include "Store/Messages/MessageSearch.h"

namespace corvane {

MessageSearch::MessageSearch(const LocalDB& db)
    : m_db(db)
{
}

MessageSearch::~MessageSearch()
{
    stop();
}

void MessageSearch::start(const QString& query, int limit, std::function<void(QList<MessageHit>)> found)
{
    stop();
    m_stopped = std::make_shared<std::atomic<bool>>(false);
    const QString path = m_db.isOpen() ? m_db.path() : QString();
    m_queue.run<QList<MessageHit>>(
        [path, query, limit, stopped = m_stopped] {
            if (path.isEmpty() || stopped->load())
                return QList<MessageHit>();
            const auto reader = SqlConnection::reader(path, stopped);
            return searchMessages(*reader, query, limit);
        },
        [found = std::move(found), stopped = m_stopped](QList<MessageHit> hits) {
            if (!stopped->load())
                found(std::move(hits));
        });
}

void MessageSearch::stop()
{
    if (m_stopped)
        m_stopped->store(true);
}

}
