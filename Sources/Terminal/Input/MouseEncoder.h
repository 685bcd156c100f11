#pragma once

#include "Terminal/Core/Modes.h"
#include "Terminal/Input/KeyEvent.h"

namespace corvane::terminal {

/// Turns mouse events into what the program asked for. Remembers the last place, since moves within a cell are told
/// only where pixels count.
class MouseEncoder {
public:
    /// Nothing if the program did not ask for events of this kind.
    std::string encode(const MouseEvent& event, const Modes& modes);

private:
    bool isWanted(const MouseEvent& event, const Modes& modes) const;
    int m_lastColumn = -1;
    int m_lastRow = -1;
    int m_pressed = 0;
};

/// Does the program want the mouse at all?
bool tracksMouse(const Modes& modes);

}
