#pragma once

#include "Store/Messages/InboxQueries.h"

namespace corvane {

/// The number of people per tab. After a change of a few people only those are queried.
class TabCounts {
public:
    explicit TabCounts(LocalDB& db); ///< outlives the counts

    void forget(const QStringList& contactIds); ///< their data changed
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
