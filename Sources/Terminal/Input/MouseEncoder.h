#pragma once

#include "Terminal/Core/Modes.h"
#include "Terminal/Input/KeyEvent.h"

namespace corvane::terminal {

/// Encodes mouse events for the program. Remembers the last position, since movement within a cell is only reported in
/// pixel mode.
class MouseEncoder {
public:
    /// Empty if the program did not request events of this kind.
    std::string encode(const MouseEvent& event, const Modes& modes);

private:
    bool isWanted(const MouseEvent& event, const Modes& modes) const;
    int m_lastColumn = -1;
    int m_lastRow = -1;
    int m_pressed = 0;
};

/// Whether the program requested mouse events.
bool tracksMouse(const Modes& modes);

}
