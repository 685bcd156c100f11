#pragma once

#include "Terminal/Grid/Anchors.h"

#include <optional>
#include <string>

namespace corvane::terminal {

class Emulator;

enum class SelectionMode : uint8_t { Character, Word, Line, Block };

/// A place of the page or the history: row as in Terminal::readRow, and column.
struct Position {
    int64_t row = 0;
    int column = 0;
    friend auto operator<=>(const Position&, const Position&) = default;
};

/// Text that the user marked. It stays on its text while that scrolls, leaves and wraps anew, and is gone when an end
/// of it is erased.
class Selection {
public:
    explicit Selection(Emulator& terminal)
        : t(terminal)
    {
    }

    /// From one place to the other, in either order, both included.
    void set(SelectionMode mode, Position from, Position to);
    void clear();
    bool isActive() const { return m_active; }

    struct Range {
        SelectionMode mode;
        Position first;
        Position last; ///< included
    };
    /// Where it is now, widened to words or lines.
    std::optional<Range> range();
    /// Wrapped rows are joined; blanks that nobody wrote are left out at the ends of lines.
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
