#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// Several statements as one: all of them or none. It takes the right to write when it begins, so what is read
/// inside cannot be changed by another program before it ends. What is not committed is undone. One inside another is
/// a part of it: it can be undone alone, and is kept only with the whole.
class Transaction {
public:
    explicit Transaction(LocalDB& db, Patience patience = Patience::Full);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// False where the file could not be had for writing: then nothing is to be done.
    [[nodiscard]] bool begun() const { return m_open; }

    [[nodiscard]] bool commit(); ///< false where nothing was kept

private:
    LocalDB& m_db;
    const bool m_inner;
    bool m_open;
};

}
