#pragma once

#include "Store/Messages/ThreadQueries.h"

namespace corvane {

/// The part of a person's thread that is held: messages without a gap, oldest first, at most three pages. Pages come
/// in at one end and go at the other as the reader moves.
class ThreadWindow {
public:
    static constexpr int pageSize = 1000;

    explicit ThreadWindow(LocalDB& db) ///< outlives the window
        : m_db(db)
    {
    }

    void open(const QString& contactId); ///< holds nothing until one of the functions below
    const QList<UnifiedMsgRow>& messages() const { return m_messages; }
    bool hasOlder() const { return m_hasOlder; } ///< there may be more before the first
    bool hasNewer() const { return m_hasNewer; } ///< and behind the last

    void showNewest();
    void showOldest();
    bool showAround(const QString& messageId); ///< false where the thread does not hold it; then nothing changes
    void extend(Towards towards); ///< by a page

    enum class Reader { AtNewest, Elsewhere };

    /// Reads again what is held. For a reader at the newest message that is the newest page; for any other the same
    /// part, with what has come before its first where nothing was before it, and behind its last while that fits.
    void refresh(Reader reader);

private:
    QList<UnifiedMsgRow> page(Towards towards, const ThreadPlace& from, qsizetype limit) const;
    void readAgain();
    void takeHistory();

    LocalDB& m_db;
    QString m_contactId;
    QList<UnifiedMsgRow> m_messages;
    bool m_hasOlder = false;
    bool m_hasNewer = false;
};

}
