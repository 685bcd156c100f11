#include "Store/Messages/ChannelFeatures.h"

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"

namespace corvane {

namespace {

const Table<ChannelFeatures> features("account_features",
    {
        { "account_id" },
        { "files", &ChannelFeatures::files },
        { "max_bytes", &ChannelFeatures::maxBytes },
        { "subject", &ChannelFeatures::subject },
        { "updated_at" },
    });

}

ChannelFeatures fetchFeatures(LocalDB& db, const QString& accountSlug)
{
    return features.first(db, u"WHERE account_id=?;"_s, { accountSlug }).value_or(ChannelFeatures());
}

bool rememberFeatures(LocalDB& db, const QString& accountSlug, const ChannelFeatures& now)
{
    if (fetchFeatures(db, accountSlug) == now)
        return false;
    return features.insert(db, now, { { "account_id", accountSlug }, { "updated_at", db.nowMs() } },
        " ON CONFLICT(account_id) DO UPDATE SET files=excluded.files, max_bytes=excluded.max_bytes, "
        "subject=excluded.subject, updated_at=excluded.updated_at");
}

}
