#pragma once

#include "Terminal/Grid/Anchors.h"

#include <optional>
#include <string>

namespace corvane::terminal {

class Emulator;

enum class SelectionMode : uint8_t { Character, Word, Line, Block };

/// Row (as in Terminal::readRow) and column.
struct Position {
    int64_t row = 0;
    int column = 0;
    friend auto operator<=>(const Position&, const Position&) = default;
};

/// A selection. It stays with its text when that scrolls, moves to the history or is rewrapped, and is dropped when
/// either of its ends is erased.
class Selection {
public:
    explicit Selection(Emulator& terminal)
        : t(terminal)
    {
    }

    /// Both ends are included, in either order.
    void set(SelectionMode mode, Position from, Position to);
    void clear();
    bool isActive() const { return m_active; }

    struct Range {
        SelectionMode mode;
        Position first;
        Position last; ///< included
    };
    /// The current range, extended to words or lines.
    std::optional<Range> range();
    /// Wrapped rows are joined; blanks that were never written are omitted at line ends.
    std::string text();

private:
    Emulator& t;
    bool m_active = false;
    bool m_onAlternate = false;
    SelectionMode m_mode = SelectionMode::Character;
    Anchors::Id m_from = 0;
    Anchors::Id m_to = 0;
};

}
