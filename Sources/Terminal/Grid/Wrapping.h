#pragma once

#include "Terminal/Grid/Cell.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace corvane::terminal {

/// The index of the first cell of each row when a line is wrapped at `width`. Wide characters are not split; with one
/// column, each is a row.
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

/// Restores the two cells of a wide character that was squeezed into a single column.
inline std::array<Cell, 2> stretched(Cell squeezed)
{
    return { squeezed.withPart(Cell::Part::WideHead), Cell::character(0, squeezed.style(), Cell::Part::WideTail) };
}

}
