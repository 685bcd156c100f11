#include "Terminal/Core/Search.h"

#include "Terminal/Core/Emulator.h"
#include "Terminal/Grid/Wrapping.h"

namespace corvane::terminal {

namespace {

/// The cell of the line that contains a byte of its text.
size_t cellOfByte(const HistoryLine& line, size_t byte)
{
    if (line.shapeCount == 0)
        return byte;
    size_t cell = 0;
    size_t at = 0;
    for (size_t i = 0; i < line.shapeCount; ++i) {
        const ShapeRun run = HistoryLine::run(line.shapes, i);
        const size_t bytes = size_t(run.bytes) * run.count;
        if (byte < at + bytes)
            return cell + (byte - at) / run.bytes * run.width;
        at += bytes;
        cell += size_t(run.width) * run.count;
    }
    return cell;
}

/// One past the last line of the history to search. A line that continues on the screen is searched with the screen.
uint64_t endOf(const Scrollback& history)
{
    return history.lineEnd() - history.isOpen();
}

/// Matches in one line, with rows counted from `firstRow`.
class LineMatches {
public:
    LineMatches(std::vector<SearchMatch>& matches, std::vector<size_t> starts, int64_t firstRow)
        : m_matches(matches)
        , m_starts(std::move(starts))
        , m_firstRow(firstRow)
    {
    }

    void add(size_t beginCell, size_t endCell)
    {
        const auto [row, column] = place(beginCell);
        const auto [endRow, endColumn] = place(endCell > beginCell ? endCell - 1 : endCell);
        m_matches.push_back({ row, column, endRow, endColumn + 1 });
    }

private:
    std::pair<int64_t, int> place(size_t cell) const
    {
        size_t part = m_starts.size() - 1;
        while (part > 0 && m_starts[part] > cell)
            --part;
        return { m_firstRow + int64_t(part), int(cell - m_starts[part]) };
    }

    std::vector<SearchMatch>& m_matches;
    std::vector<size_t> m_starts;
    int64_t m_firstRow;
};

/// A line that is at least partly on the screen.
struct ScreenLine {
    std::vector<Cell> cells;
    std::string text;
    std::vector<size_t> cellOfByte; // has one more entry for the end
    std::vector<size_t> starts;
    int64_t firstRow = 0;

    void append(const Emulator& t, Cell cell)
    {
        if (cell.part() != Cell::Part::WideTail && !cell.isFiller()) {
            if (cell.isCluster())
                text += encodeUtf8(t.clusters[cell.content()]);
            else
                appendUtf8(text, cell.content());
            cellOfByte.resize(text.size(), cells.size());
        }
        cells.push_back(cell);
    }
};

}

void SearchRun::begin(const Emulator& t)
{
    m_history = t.screen->history;
    m_columns = t.columns();
    m_end = m_next = m_history ? endOf(*m_history) : 0;
    m_below = 0;
    m_matches.clear();
}

bool SearchRun::step(Emulator& t)
{
    const Scrollback& history = t.history;
    if (m_columns != t.columns() || m_history != t.screen->history || (m_history && endOf(history) < m_end))
        begin(t);
    const auto after = std::ranges::partition_point(
        history.pages(), [this](const HistoryPage& page) { return page.firstLine() < m_next; });
    const uint64_t first = history.firstLine();
    if (m_next <= first || after == history.pages().begin() || m_matches.size() >= m_most || !m_history) {
        finish(t);
        return false;
    }
    const HistoryPage& page = *std::prev(after);
    const uint64_t from = std::max(first, page.firstLine());
    const auto lineAt = [&page](uint64_t number) {
        return page.line(uint32_t(number - page.firstLine()));
    };
    int64_t rows = 0;
    if (from == page.firstLine() && m_next == page.endLine()) {
        rows = int64_t(page.rows(m_columns));
    } else {
        for (uint64_t number = from; number < m_next; ++number)
            rows += int64_t(rowsOf(lineAt(number), m_columns));
    }
    if (!m_pattern.isLiteral() || m_pattern.find(page.text())) {
        const auto known = ptrdiff_t(m_matches.size());
        int64_t row = -m_below - rows;
        for (uint64_t number = from; number < m_next; ++number) {
            const HistoryLine line = lineAt(number);
            searchLine(t, line, number, row);
            row += int64_t(rowsOf(line, m_columns));
        }
        std::reverse(m_matches.begin() + known, m_matches.end());
    }
    page.cool();
    m_below += rows;
    m_next = from;
    return true;
}

void SearchRun::searchLine(Emulator& t, const HistoryLine& line, uint64_t number, int64_t row)
{
    auto match = m_pattern.find(line.text);
    if (!match)
        return;
    const int width = line.size == LineSize::Single ? m_columns : (m_columns + 1) / 2;
    std::vector<size_t> starts { 0 };
    if (line.cells > uint32_t(width)) {
        std::vector<Cell> cells;
        t.history.unpack(number, cells);
        starts = rowStarts(cells, width);
    }
    LineMatches matches(m_matches, std::move(starts), row);
    for (; match; match = m_pattern.find(line.text, match->second))
        matches.add(cellOfByte(line, match->first), cellOfByte(line, match->second));
}

void SearchRun::finish(Emulator& t)
{
    std::ranges::reverse(m_matches);
    if (m_history)
        searchNewLines(t);
    // Any lines that were dropped from the history meanwhile were the oldest.
    const int64_t oldest = m_history ? -int64_t(m_history->rows(m_columns)) : 0;
    std::erase_if(m_matches, [oldest](const SearchMatch& match) { return match.row < oldest; });
    searchScreen(t);
    if (m_matches.size() > m_most)
        m_matches.erase(m_matches.begin(), m_matches.end() - ptrdiff_t(m_most));
    m_generation = t.generation;
}

/// Lines that left the screen after the search began shift the earlier matches up.
void SearchRun::searchNewLines(Emulator& t)
{
    const Scrollback& history = t.history;
    const uint64_t begin = std::max(m_end, history.firstLine());
    const uint64_t end = endOf(history);
    int64_t below = 0;
    for (uint64_t number = begin; number < history.lineEnd(); ++number)
        below += int64_t(rowsOf(history.line(number), m_columns));
    for (SearchMatch& match : m_matches) {
        match.row -= below;
        match.endRow -= below;
    }
    for (uint64_t number = begin; number < end; ++number) {
        const HistoryLine line = history.line(number);
        searchLine(t, line, number, -below);
        below -= int64_t(rowsOf(line, m_columns));
    }
}

void SearchRun::searchScreen(Emulator& t)
{
    ScreenLine line;
    const auto finish = [&] {
        line.cellOfByte.push_back(line.cells.size());
        LineMatches matches(m_matches, line.starts, line.firstRow);
        for (auto match = m_pattern.find(line.text); match; match = m_pattern.find(line.text, match->second))
            matches.add(line.cellOfByte[match->first], line.cellOfByte[match->second]);
        line = {};
    };
    if (m_history && t.history.isOpen()) {
        // The line starts in the history.
        std::vector<Cell> cells;
        t.history.unpack(t.history.lineEnd() - 1, cells);
        for (const Cell cell : cells)
            line.append(t, cell);
        line.starts = rowStarts(cells, t.columns());
        line.firstRow = -int64_t(line.starts.size());
    }
    for (int index = 0; index < t.rows(); ++index) {
        const Row& row = t.row(index);
        if (line.starts.empty())
            line.firstRow = index;
        line.starts.push_back(line.cells.size());
        const int end = row.wrapped ? t.rowEnd(row) : t.textLength(row);
        for (int column = 0; column < end; ++column) {
            if (!row.cells[column].isFiller())
                line.append(t, row.cells[column]);
        }
        if (!row.wrapped)
            finish();
    }
    if (!line.starts.empty())
        finish();
}

}
