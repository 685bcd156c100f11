#include "Terminal/Core/HistoryView.h"

#include "Terminal/Grid/Wrapping.h"

namespace corvane::terminal {

size_t HistoryView::rowsOfLine(uint64_t line) const
{
    return rowsOf(m_history.line(line), m_columns);
}

bool HistoryView::continues(uint64_t line) const
{
    return line > m_history.firstLine() && m_history.line(line - 1).joined;
}

/// Skips whole pages from the end, then goes line by line, forwards, since a page is read fastest in that direction.
HistoryView::Address HistoryView::addressOf(int64_t row) const
{
    const uint64_t first = m_history.firstLine();
    auto remaining = uint64_t(-row);
    uint64_t end = m_history.lineEnd();
    for (auto page = m_history.pages().rbegin(); page != m_history.pages().rend(); ++page) {
        for (; end > page->endLine(); --end) {
            const size_t rows = rowsOfLine(end - 1);
            if (remaining <= rows)
                return { end - 1, size_t(rows - remaining) };
            remaining -= rows;
        }
        const uint64_t rows = page->rows(m_columns);
        if (remaining > rows) {
            remaining -= rows;
            end = page->firstLine();
            continue;
        }
        uint64_t before = rows - remaining;
        for (uint64_t line = page->firstLine(); line < end; ++line) {
            const size_t here = rowsOfLine(line);
            if (before < here)
                return line < first ? Address { first, 0 } : Address { line, size_t(before) };
            before -= here;
        }
    }
    return { first, 0 };
}

HistoryView::Address HistoryView::next(Address address) const
{
    if (address.part + 1 < rowsOfLine(address.line))
        return { address.line, address.part + 1 };
    return { address.line + 1, 0 };
}

std::pair<int64_t, int> HistoryView::placeOf(uint64_t line, uint32_t offset)
{
    int64_t below = 0;
    uint64_t after = m_history.lineEnd();
    for (auto page = m_history.pages().rbegin(); page != m_history.pages().rend() && after > line + 1; ++page) {
        for (; after > std::max(page->endLine(), line + 1); --after)
            below += int64_t(rowsOfLine(after - 1));
        if (after == page->endLine() && page->firstLine() > line) {
            below += int64_t(page->rows(m_columns));
            after = page->firstLine();
        }
    }
    for (uint64_t each = line + 1; each < after; ++each)
        below += int64_t(rowsOfLine(each));
    m_history.unpack(line, m_cells);
    const std::vector<size_t> starts = rowStarts(m_cells, widthOf(m_history.line(line).size));
    size_t part = starts.size() - 1;
    while (part > 0 && starts[part] > offset)
        --part;
    return { -(below + int64_t(starts.size() - part)), int(offset - starts[part]) };
}

size_t HistoryView::startOf(Address address)
{
    m_history.unpack(address.line, m_cells);
    const std::vector<size_t> starts = rowStarts(m_cells, widthOf(m_history.line(address.line).size));
    return starts[std::min(address.part, starts.size() - 1)];
}

void HistoryView::readPart(uint64_t line, const std::vector<size_t>& starts, size_t part, RowView& view) const
{
    const size_t end = part + 1 < starts.size() ? starts[part + 1] : m_cells.size();
    view.cells.assign(m_cells.begin() + int64_t(starts[part]), m_cells.begin() + int64_t(end));
    view.size = m_history.line(line).size;
    view.continued = part > 0 || continues(line);
    if (widthOf(view.size) == 1 && view.cells.size() == 2)
        view.cells = { view.cells[0].withPart(Cell::Part::Filler) };
}

void HistoryView::read(Address address, RowView& view)
{
    m_history.unpack(address.line, m_cells);
    const std::vector<size_t> starts = rowStarts(m_cells, widthOf(m_history.line(address.line).size));
    readPart(address.line, starts, std::min(address.part, starts.size() - 1), view);
}

std::vector<RowView> HistoryView::readLine(uint64_t line)
{
    m_history.unpack(line, m_cells);
    const std::vector<size_t> starts = rowStarts(m_cells, widthOf(m_history.line(line).size));
    std::vector<RowView> rows(starts.size());
    for (size_t part = 0; part < starts.size(); ++part)
        readPart(line, starts, part, rows[part]);
    return rows;
}

}
