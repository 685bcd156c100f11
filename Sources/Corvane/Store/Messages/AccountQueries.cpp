#include "Store/Messages/AccountQueries.h"

namespace corvane {

QHash<QString, qint64> fetchLastMessageTimes(LocalDB& db)
{
    using Entry = std::pair<QString, qint64>;
    const auto entries = db.rows("SELECT account_id, MAX(last_ts) FROM unified_conversation"
                                 " WHERE deleted_at IS NULL GROUP BY account_id;",
        {}, [](const SqlRow& row) { return Entry { row.text(0), row.integer(1) }; });
    return { entries.begin(), entries.end() };
}

}
