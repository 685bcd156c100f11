#pragma once

#include <QSet>
#include <functional>

namespace corvane {

/// The rowids of rows that this program changed and that the search index has not taken in yet. They accumulate until
/// `take`, and those taken still count as changed until `taken`.
class MessageChanges {
public:
    struct Rows {
        QSet<qint64> messages; ///< of unified_message, without new ones, which the index finds by itself
        QSet<qint64> transcripts; ///< of audio_transcript

        bool isEmpty() const { return messages.isEmpty() && transcripts.isEmpty(); }
    };

    /// Called for every change, including new messages, from within a statement: it must not use the database.
    void onChange(std::function<void()> changed) { m_changed = std::move(changed); }
    bool isFollowed() const { return bool(m_changed); } ///< an index follows the changes

    /// `operation` is that of SQLite's update hook. Ignored while no index follows.
    void note(int operation, const char* table, qint64 rowid);

    Rows all() const; ///< changed since the index took them in
    Rows take(qsizetype limit = 20'000);
    void taken(); ///< the rows of the last `take` are in the index
    void notTaken(); ///< they are not, and will be taken again

private:
    std::function<void()> m_changed;
    Rows m_waiting;
    Rows m_inWork;
};

}
