#pragma once

#include "Terminal/Grid/Cell.h"

#include <algorithm>
#include <cstring>

namespace corvane::terminal {

enum class LineSize : uint8_t { Single, Wide, Top, Bottom };

/// A row of the screen. Its flags say what it may contain, so that plain rows take fast paths.
struct Row {
    Cell* cells = nullptr; ///< as many as the grid has columns; all from `used` on are zero
    uint64_t changed = 0; ///< generation of the last change
    uint64_t id = 0; ///< unique; renewed whenever the row is reused
    uint16_t used = 0;
    LineSize size = LineSize::Single;
    bool wrapped = false; ///< the text continues in the row below
    bool styled = false; ///< some cell may have a style
    bool complex = false; ///< some cell may be non-ASCII
    bool anchored = false; ///< an anchor refers to it

    /// Zeroes the cells and resets the flags.
    void clear()
    {
        std::memset(static_cast<void*>(cells), 0, used * sizeof(Cell));
        used = 0;
        size = LineSize::Single;
        wrapped = styled = complex = anchored = false;
    }

    /// Marks the cells up to `to` as used.
    void touch(int to) { used = std::max(used, uint16_t(to)); }

    void fill(int from, int to, Cell cell)
    {
        if (from >= to)
            return;
        if (cell == Cell() && to >= used) {
            if (from < used) {
                std::memset(static_cast<void*>(cells + from), 0, (used - from) * sizeof(Cell));
                used = uint16_t(from);
            }
            return;
        }
        std::fill(cells + from, cells + to, cell);
        styled |= cell.style() != 0;
        complex |= cell.content() >= 0x80;
        touch(to);
    }

    /// Erases the wide character whose halves are `column - 1` and `column`, if there is one.
    void cutWide(int column)
    {
        if (!complex || column <= 0 || column >= used || cells[column].part() != Cell::Part::WideTail)
            return;
        cells[column - 1] = Cell::erased(cells[column - 1].style());
        cells[column] = Cell::erased(cells[column].style());
    }
    /// To be called before the cells from `from` to `to` are replaced.
    void cutAround(int from, int to)
    {
        cutWide(from);
        cutWide(to);
    }

    /// The length without trailing blanks.
    int contentLength() const
    {
        int length = used;
        while (length > 0 && cells[length - 1] == Cell())
            --length;
        return length;
    }
};

}
