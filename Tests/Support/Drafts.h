#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

/// What another program that knows no rules may do to a draft.
inline void markDraft(LocalDB& db, const QString& id, const QString& status)
{
    db.run(u"UPDATE outbound_draft SET status=?, updated_at=? WHERE id=?;"_s, { status, db.nowMs(), id });
}

}
