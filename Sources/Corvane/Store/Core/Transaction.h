#pragma once

namespace corvane {

class LocalDB;

/// Several statements as one: all of them or none. It takes the right to write when it begins, so what is read
/// inside cannot be changed by another program before it ends. What is not committed is undone.
class Transaction {
public:
    explicit Transaction(LocalDB& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// False where the file could not be had for writing, or a transaction runs already: then nothing is to be done.
    [[nodiscard]] bool begun() const { return m_open; }

    [[nodiscard]] bool commit(); ///< false where nothing was kept

private:
    LocalDB& m_db;
    bool m_open;
};

}
