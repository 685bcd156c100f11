#include "Engines/UnreadCount.h"

#include "Store/Core/Workspaces.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/People/IdentityQueries.h"

#include <numeric>

namespace corvane {

UnreadCount::UnreadCount(LocalDB& db)
    : m_db(db)
{
}

void UnreadCount::read()
{
    readAll(activeWorkspaceId(m_db));
}

void UnreadCount::readAll(const QString& workspace)
{
    m_workspace = workspace;
    m_unread = unreadByConversation(m_db, workspace);
    m_total = std::accumulate(m_unread.cbegin(), m_unread.cend(), 0);
}

void UnreadCount::read(const QSet<QString>& contactIds)
{
    const QString workspace = activeWorkspaceId(m_db);
    if (workspace != m_workspace)
        return readAll(workspace);
    QStringList ids = contactIds.values();
    for (const QString& id : contactIds) {
        if (const QString person = personBehind(m_db, id); person != id)
            ids.append(person); // may have the conversation already, or get it soon
    }
    const QHash<qint64, int> changed = unreadByConversation(m_db, workspace, ids);
    for (auto row = changed.cbegin(); row != changed.cend(); ++row)
        m_total += *row - std::exchange(m_unread[row.key()], *row);
}

}
