#pragma once

#include "Store/Core/Transaction.h"

#include <functional>
#include <optional>
#include <vector>

namespace corvane {

/// The lines of one turn of the event loop as one transaction: either everything is kept, or nothing and the lines are
/// delivered again. Side effects follow after the commit.
class LineGroup {
public:
    explicit LineGroup(LocalDB& db);

    /// Runs `store`, the writes of one line, as a savepoint; a line that fails by its own fault is logged and undone
    /// alone. False if the file cannot be written now: the line, and all others if the group `hasRows`, must be
    /// delivered again. The first line of a group takes the write lock and waits one frame for it.
    [[nodiscard]] bool add(const std::function<void()>& store);

    bool hasRows() const { return m_transaction.has_value(); }

    /// Called by `tell`, in order; skipped if its line is undone.
    void afterCommit(std::function<void()> effect) { m_effects.push_back(std::move(effect)); }

    [[nodiscard]] bool commit(); ///< false if nothing was kept
    void rollBack();

    /// After a commit: runs everything that waited for it.
    void tell();

private:
    bool begin();
    bool settleWorkspace();

    LocalDB& m_db;
    bool m_workspaceSettled = false; ///< since the last group that was rolled back
    std::optional<Transaction> m_transaction;
    std::vector<std::function<void()>> m_effects;
};

}
