#pragma once

#include "Store/Messages/InboxQueries.h"

namespace corvane {

/// How many people stand under the tabs. Where a few people changed, only those are asked for.
class TabCounts {
public:
    explicit TabCounts(LocalDB& db); ///< outlives the counts

    void forget(const QStringList& contactIds); ///< something changed of them
    void forgetAll();
    void read();

    int of(InboxFilter filter) const; ///< as last read; 0 for a filter that is not counted

private:
    LocalDB& m_db;
    CountedPeople m_people;
    QSet<QString> m_due;
    bool m_allDue = true;
};

}
