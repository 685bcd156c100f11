#include "Engines/LineGroup.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

LineGroup::LineGroup(LocalDB& db)
    : m_db(db)
{
}

/// The workspace selection also writes a user default: not in a transaction that may be rolled back. False if the file
/// cannot be written now.
bool LineGroup::settleWorkspace()
{
    if (m_workspaceSettled)
        return true;
    if (m_db.isHeldElsewhere())
        return false;
    activeWorkspaceId(m_db);
    m_workspaceSettled = true;
    return true;
}

bool LineGroup::begin()
{
    if (m_db.health().fault() != StoreFault::None || !settleWorkspace())
        return false;
    m_transaction.emplace(m_db, Patience::Frame);
    if (!m_transaction->begun())
        m_transaction.reset();
    return hasRows();
}

bool LineGroup::add(const std::function<void()>& store)
{
    if (!hasRows() && !begin())
        return false;
    const size_t effects = m_effects.size();
    Transaction line(m_db);
    m_db.forgetFailure();
    store();
    if (m_db.failure() == 0 && line.commit())
        return true;
    m_effects.resize(effects);
    if (mayPass(m_db.failure()))
        return false;
    log(u"LineGroup: a line could not be stored"_s);
    return true;
}

bool LineGroup::commit()
{
    if (hasRows() && !m_transaction->commit()) {
        rollBack();
        return false;
    }
    m_transaction.reset();
    return true;
}

void LineGroup::rollBack()
{
    m_effects.clear();
    m_transaction.reset();
    m_workspaceSettled = false;
}

void LineGroup::tell()
{
    // A side effect may start another group.
    for (const auto& effect : std::exchange(m_effects, {}))
        effect();
}

}
