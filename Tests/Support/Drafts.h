#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

/// Sets a draft's status directly, as another program that ignores the rules could.
inline void markDraft(LocalDB& db, const QString& id, const QString& status)
{
    db.run(u"UPDATE outbound_draft SET status=?, updated_at=? WHERE id=?;"_s, { status, db.nowMs(), id });
}

}
