#pragma once

#include "Terminal/Grid/Row.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace corvane::terminal {

/// The rows of one screen. Scrolling moves handles, never cells.
class Grid {
public:
    Grid(int columns, int rows);

    int columns() const { return m_columns; }
    int rows() const { return int(m_order.size()); }
    Row& row(int index) { return *m_order[size_t(index)]; }
    const Row& row(int index) const { return *m_order[size_t(index)]; }

    /// Moves the rows of [top, bottom) up by `count`, at most their number; the freed ones reappear blank below.
    void rotateUp(int top, int bottom, int count);
    void rotateDown(int top, int bottom, int count);
    /// Clears the row and gives it a new id.
    void renew(Row& row)
    {
        row.clear();
        row.id = ++m_lastId;
    }

    /// Skips all row ids that the other grid has used.
    void adoptIds(const Grid& other);

    size_t bytes() const
    {
        return size_t(m_columns) * m_headers.size() * sizeof(Cell) + m_headers.size() * sizeof(Row);
    }

    /// A description of an inconsistency, or null; for debug builds and the fuzzer.
    const char* fault() const;

private:
    struct Free {
        void operator()(Cell* cells) const { std::free(cells); }
    };
    int m_columns;
    std::unique_ptr<Cell, Free> m_cells;
    std::vector<Row> m_headers;
    std::vector<Row*> m_order;
    uint64_t m_lastId = 0;
};

}
