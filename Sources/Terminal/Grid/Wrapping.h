#pragma once

#include "Terminal/Grid/Cell.h"

#include <cstddef>
#include <span>
#include <vector>

namespace corvane::terminal {

/// Where the rows of a line begin when it is wrapped at `width`. A wide character is not parted.
inline std::vector<size_t> rowStarts(std::span<const Cell> cells, int width)
{
    std::vector<size_t> starts { 0 };
    while (cells.size() - starts.back() > size_t(width)) {
        size_t next = starts.back() + size_t(width);
        if (width > 1 && cells[next].part() == Cell::Part::WideTail)
            --next;
        starts.push_back(next);
    }
    return starts;
}

}
