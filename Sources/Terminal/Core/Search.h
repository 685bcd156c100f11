#pragma once

#include "Terminal/Text/Pattern.h"

#include <cstdint>
#include <vector>

namespace corvane::terminal {

class Emulator;

/// Rows as in Terminal::readRow; the end is one past the last column.
struct SearchMatch {
    int64_t row;
    int column;
    int64_t endRow;
    int endColumn;
};

/// Looks through the history and the screen, line by line, whatever their wrapping.
std::vector<SearchMatch> searchText(Emulator& terminal, Pattern& pattern, size_t most);

}
