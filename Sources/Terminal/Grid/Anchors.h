#pragma once

#include "Terminal/Grid/Row.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace corvane::terminal {

/// A place in the text that stays with it: while its row is on the screen it is named by the row, and once that has
/// left, by the number of its line in the history.
struct Place {
    enum class Where : uint8_t { Gone, OnScreen, InHistory };
    Where where = Where::Gone;
    uint64_t line = 0; ///< id of the row, or number of the line
    uint32_t offset = 0; ///< column, or cell of the line
};

/// Keeps places true while rows move, leave, wrap anew or are erased.
class Anchors {
public:
    using Id = uint32_t;

    Id add(Row& row, int column);
    Id addInHistory(uint64_t line, uint32_t offset);
    void remove(Id id);
    const Place& operator[](Id id) const { return m_places[id]; }

    /// The row's text now begins at `offset` of a line in the history.
    void rowLeft(uint64_t rowId, uint64_t line, uint32_t offset);
    /// The row is gone for good.
    void rowGone(uint64_t rowId);
    /// None of the rows is left.
    void screenGone();
    void move(Id id, Row& row, int column);
    void moveToHistory(Id id, uint64_t line, uint32_t offset);

    const std::vector<Id>& onScreen() const { return m_onScreen; }
    /// The line in the history came back to the screen.
    std::vector<Id> inHistoryFrom(uint64_t line) const;

private:
    Id take(Place place);
    void leaveScreen(Id id);

    std::vector<Place> m_places;
    std::vector<Id> m_free;
    std::vector<Id> m_onScreen;
};

}
