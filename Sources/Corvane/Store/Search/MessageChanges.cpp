#include "Store/Search/MessageChanges.h"

#include <cstring>
#include <sqlite3.h>
#include <utility>

namespace corvane {

namespace {

MessageChanges::Rows united(MessageChanges::Rows rows, const MessageChanges::Rows& others)
{
    rows.messages.unite(others.messages);
    rows.transcripts.unite(others.transcripts);
    return rows;
}

}

void MessageChanges::note(int operation, const char* table, qint64 rowid)
{
    if (!m_changed)
        return;
    if (std::strcmp(table, "unified_message") == 0) {
        if (operation == SQLITE_UPDATE)
            m_waiting.messages.insert(rowid);
    } else if (std::strcmp(table, "audio_transcript") == 0) {
        m_waiting.transcripts.insert(rowid);
    } else {
        return;
    }
    m_changed();
}

MessageChanges::Rows MessageChanges::all() const
{
    return united(m_waiting, m_inWork);
}

MessageChanges::Rows MessageChanges::take(qsizetype limit)
{
    const auto move = [limit](QSet<qint64>& from, QSet<qint64>& to) {
        while (!from.isEmpty() && to.size() < limit) {
            to.insert(*from.cbegin());
            from.erase(from.cbegin());
        }
    };
    move(m_waiting.messages, m_inWork.messages);
    move(m_waiting.transcripts, m_inWork.transcripts);
    return m_inWork;
}

void MessageChanges::taken()
{
    m_inWork = {};
}

void MessageChanges::notTaken()
{
    m_waiting = united(std::move(m_waiting), std::exchange(m_inWork, {}));
}

}
