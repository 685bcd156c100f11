#pragma once

#include "Terminal/Grid/Cell.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace corvane::terminal {

/// Where the rows of a line begin when it is wrapped at `width`. A wide character is not parted; where there is only
/// one column it is a row.
inline std::vector<size_t> rowStarts(std::span<const Cell> cells, int width)
{
    std::vector<size_t> starts { 0 };
    while (cells.size() - starts.back() > size_t(width)) {
        size_t next = starts.back() + size_t(width);
        if (cells[next].part() == Cell::Part::WideTail)
            next = width > 1 ? next - 1 : next + 1;
        if (next == cells.size())
            break;
        starts.push_back(next);
    }
    return starts;
}

/// The wide character that is all of a row of one column, as it is elsewhere.
inline std::array<Cell, 2> stretched(Cell squeezed)
{
    return { squeezed.withPart(Cell::Part::WideHead), Cell::character(0, squeezed.style(), Cell::Part::WideTail) };
}

}
