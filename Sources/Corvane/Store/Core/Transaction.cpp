#include "Store/Core/Transaction.h"

namespace corvane {

Transaction::Transaction(LocalDB& db, Patience patience)
    : m_db(db)
    , m_inner(db.inTransaction())
    , m_open(m_inner ? db.run("SAVEPOINT part;") : db.begin(patience))
{
}

Transaction::~Transaction()
{
    // SQLite rolls back on its own after some failures, such as a full disk.
    if (!m_open || !m_db.inTransaction())
        return;
    if (m_inner)
        m_db.run("ROLLBACK TO part;");
    m_db.run(m_inner ? "RELEASE part;" : "ROLLBACK;");
}

bool Transaction::commit()
{
    if (!m_open || !m_db.inTransaction() || !m_db.run(m_inner ? "RELEASE part;" : "COMMIT;"))
        return false;
    m_open = false;
    return true;
}

}
