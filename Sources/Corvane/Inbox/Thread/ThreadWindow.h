#pragma once

#include "Store/Messages/ThreadQueries.h"

namespace corvane {

/// The loaded part of a person's thread: consecutive messages, oldest first, at most three pages. Pages are loaded at
/// one end and dropped at the other while scrolling.
class ThreadWindow {
public:
    static constexpr int pageSize = 1000;

    explicit ThreadWindow(LocalDB& db) ///< outlives the window
        : m_db(db)
    {
    }

    void open(const QString& contactId); ///< nothing is loaded until one of the functions below
    const QList<UnifiedMsgRow>& messages() const { return m_messages; }
    bool hasOlder() const { return m_hasOlder; } ///< there may be more before the first
    bool hasNewer() const { return m_hasNewer; } ///< and after the last

    void showNewest();
    void showOldest();
    bool showAround(const QString& messageId); ///< false if the thread does not contain it; then nothing changes
    void extend(Towards towards); ///< loads a page

    enum class Reader { AtNewest, Elsewhere };

    /// Reads the loaded part again. At the newest message that is the newest page; elsewhere the same part, extended by
    /// messages that arrived before its start or, while they fit, after its end.
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
