#pragma once

#include "Store/Core/Transaction.h"

#include <functional>
#include <optional>
#include <vector>

namespace corvane {

/// The lines of one turn of the event loop as one transaction: either what all of them store is kept, or nothing is
/// and the lines come again. What else a line brings about follows the commit.
class LineGroup {
public:
    explicit LineGroup(LocalDB& db);

    /// Runs `store`, the writes of one line, which stand or fall whole; a line that fails by its own fault is logged
    /// and undone alone. False where the file takes no writes now: the line, and where the group `hasRows` all others
    /// of it, are to come again. The first line of a group asks for the right to write and waits a frame for it.
    [[nodiscard]] bool add(const std::function<void()>& store);

    bool hasRows() const { return m_transaction.has_value(); }

    /// Called by `tell`, in order; not where the line that it belongs to is undone.
    void afterCommit(std::function<void()> effect) { m_effects.push_back(std::move(effect)); }

    [[nodiscard]] bool commit(); ///< false where nothing was kept
    void rollBack();

    /// After a commit: everything that waited for it.
    void tell();

private:
    bool begin();

    LocalDB& m_db;
    std::optional<Transaction> m_transaction;
    std::vector<std::function<void()>> m_effects;
};

}
