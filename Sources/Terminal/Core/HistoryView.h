#pragma once

#include "Terminal/Grid/Scrollback.h"

namespace corvane::terminal {

/// A row for display, from the screen or the history.
struct RowView {
    std::vector<Cell> cells; ///< without trailing blanks
    LineSize size = LineSize::Single;
    bool continued = false; ///< continues the row above
};

/// The history as rows of a given width. Row -1 is the newest one.
class HistoryView {
public:
    HistoryView(Scrollback& history, int columns)
        : m_history(history)
        , m_columns(columns)
    {
    }

    struct Address {
        uint64_t line;
        size_t part; ///< index of the row within the line
    };

    size_t rows() const { return m_history.rows(m_columns); }
    /// `row` is negative and at least -rows().
    Address addressOf(int64_t row) const;
    /// The address of the row below, which must be in the history, too.
    Address next(Address address) const;
    /// The row (negative) and column that show this cell of the line.
    std::pair<int64_t, int> placeOf(uint64_t line, uint32_t offset);
    /// Index of the first cell of the row within its line.
    size_t startOf(Address address);
    void read(Address address, RowView& view);
    /// All rows of the line at once.
    std::vector<RowView> readLine(uint64_t line);

private:
    int widthOf(LineSize size) const { return size == LineSize::Single ? m_columns : (m_columns + 1) / 2; }
    size_t rowsOfLine(uint64_t line) const;
    bool continues(uint64_t line) const;
    /// One row of the line that was read last; rows begin at `starts`.
    void readPart(uint64_t line, const std::vector<size_t>& starts, size_t part, RowView& view) const;

    Scrollback& m_history;
    int m_columns;
    std::vector<Cell> m_cells; // the line that was read last
};

}
