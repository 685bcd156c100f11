#pragma once

#include "Terminal/Grid/Row.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane::terminal {

/// A position that stays with its text: identified by its row on the screen, or by its line once that is in the
/// history.
struct Place {
    enum class Where : uint8_t { Gone, OnScreen, InHistory };
    Where where = Where::Gone;
    uint64_t line = 0; ///< id of the row, or number of the line
    uint32_t offset = 0; ///< column, or cell of the line
};

/// Keeps places valid while rows move, scroll out, are rewrapped or erased.
class Anchors {
public:
    using Id = uint32_t;

    Id add(Row& row, int column);
    Id addInHistory(uint64_t line, uint32_t offset);
    void remove(Id id);
    const Place& operator[](Id id) const { return m_places[id]; }

    /// The row's text now begins at `offset` of a line in the history.
    void rowLeft(uint64_t rowId, uint64_t line, uint32_t offset);
    /// The row was discarded.
    void rowGone(uint64_t rowId);
    /// All rows were discarded.
    void screenGone();
    void move(Id id, Row& row, int column);
    void moveToHistory(Id id, uint64_t line, uint32_t offset);

    const std::vector<Id>& onScreen() const { return m_onScreen; }
    /// The anchors in this line of the history and later ones.
    std::vector<Id> inHistoryFrom(uint64_t line) const;

private:
    Id take(Place place);
    void leaveScreen(Id id);

    std::vector<Place> m_places;
    std::vector<Id> m_free;
    std::vector<Id> m_onScreen;
};

}
