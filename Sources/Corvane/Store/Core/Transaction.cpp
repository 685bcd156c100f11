#include "Store/Core/Transaction.h"

#include "Store/Core/LocalDB.h"

namespace corvane {

Transaction::Transaction(LocalDB& db)
    : m_db(db)
    , m_open(db.run("BEGIN IMMEDIATE;"))
{
}

Transaction::~Transaction()
{
    // SQLite ends a transaction by itself after some failures, such as a full disk.
    if (m_open && m_db.inTransaction())
        m_db.run("ROLLBACK;");
}

bool Transaction::commit()
{
    if (!m_open || !m_db.inTransaction() || !m_db.run("COMMIT;"))
        return false;
    m_open = false;
    return true;
}

}
