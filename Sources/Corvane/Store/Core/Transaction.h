#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// Runs several statements atomically. It takes the write lock when it begins, so what is read inside cannot be changed
/// by another program before it ends. Without a commit it is rolled back. A nested transaction is a savepoint: it can
/// be rolled back on its own, and is kept only with the outer one.
class Transaction {
public:
    explicit Transaction(LocalDB& db, Patience patience = Patience::Full);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// False if the write lock could not be taken: then do nothing.
    [[nodiscard]] bool begun() const { return m_open; }

    [[nodiscard]] bool commit(); ///< false if nothing was kept

private:
    LocalDB& m_db;
    const bool m_inner;
    bool m_open;
};

}
