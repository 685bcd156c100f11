#pragma once

#include <QSet>
#include <functional>

namespace corvane {

/// Rows that this program changed and that the search index has not taken in yet, by their rowids. It grows until
/// `take`, and what was taken still counts as changed until `taken`.
class MessageChanges {
public:
    struct Rows {
        QSet<qint64> messages; ///< of unified_message; new ones are not listed, the index finds them by itself
        QSet<qint64> transcripts; ///< of audio_transcript

        bool isEmpty() const { return messages.isEmpty() && transcripts.isEmpty(); }
    };

    /// Called at every change, new messages included, from within a statement, which must not use the database.
    void onChange(std::function<void()> changed) { m_changed = std::move(changed); }
    bool isFollowed() const { return bool(m_changed); } ///< an index takes the changes in

    /// `operation` as SQLite's update hook names it. Ignored until somebody listens.
    void note(int operation, const char* table, qint64 rowid);

    Rows all() const; ///< what the index does not show, or shows as it was
    Rows take(qsizetype limit = 20'000);
    void taken(); ///< the rows of the last `take` are in the index
    void notTaken(); ///< they are not, and will be taken again

private:
    std::function<void()> m_changed;
    Rows m_waiting;
    Rows m_inWork;
};

}
