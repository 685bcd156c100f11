#include "Terminal/Core/Search.h"

#include "Terminal/Core/Emulator.h"
#include "Terminal/Grid/Wrapping.h"

namespace corvane::terminal {

namespace {

/// The cell of the line in which a byte of its text stands.
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

/// Matches of one line, as places of rows counted from `firstRow`.
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

/// A line whose rows are, at least in part, on the screen.
struct ScreenLine {
    std::vector<Cell> cells;
    std::string text;
    std::vector<size_t> cellOfByte; // with one more at the end
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

class Search {
public:
    Search(Emulator& terminal, Pattern& pattern, size_t most)
        : t(terminal)
        , m_pattern(pattern)
        , m_most(most)
    {
    }

    std::vector<SearchMatch> run()
    {
        if (t.screen->history)
            searchHistory();
        searchScreen();
        return std::move(m_matches);
    }

private:
    void searchHistory()
    {
        const Scrollback& history = t.history;
        int64_t row = -int64_t(history.rows(t.columns()));
        const uint64_t first = history.firstLine();
        for (const HistoryPage& page : history.pages()) {
            if (m_matches.size() >= m_most)
                return;
            if (page.firstLine() >= first && m_pattern.isLiteral() && !m_pattern.find(page.text())) {
                row += int64_t(page.rows(t.columns()));
                page.cool();
                continue;
            }
            uint32_t index = first > page.firstLine() ? uint32_t(first - page.firstLine()) : 0;
            for (; index < page.lines() && m_matches.size() < m_most; ++index) {
                const HistoryLine line = page.line(index);
                const int width = line.size == LineSize::Single ? t.columns() : (t.columns() + 1) / 2;
                searchLine(line, page.firstLine() + index, row, width);
                row += int64_t(rowsOf(line, t.columns()));
            }
            page.cool();
        }
    }

    void searchLine(const HistoryLine& line, uint64_t number, int64_t row, int width)
    {
        auto match = m_pattern.find(line.text);
        if (!match)
            return;
        std::vector<size_t> starts { 0 };
        if (line.cells > uint32_t(width)) {
            t.history.unpack(number, m_cells);
            starts = rowStarts(m_cells, width);
        }
        LineMatches matches(m_matches, std::move(starts), row);
        for (; match && m_matches.size() < m_most; match = m_pattern.find(line.text, match->second))
            matches.add(cellOfByte(line, match->first), cellOfByte(line, match->second));
    }

    void searchScreen()
    {
        ScreenLine line;
        const auto finish = [&] {
            line.cellOfByte.push_back(line.cells.size());
            LineMatches matches(m_matches, line.starts, line.firstRow);
            for (auto match = m_pattern.find(line.text); match && m_matches.size() < m_most;
                match = m_pattern.find(line.text, match->second))
                matches.add(line.cellOfByte[match->first], line.cellOfByte[match->second]);
            line = {};
        };
        if (t.screen->history && t.history.isOpen()) {
            // The line began in the history.
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

    Emulator& t;
    Pattern& m_pattern;
    const size_t m_most;
    std::vector<SearchMatch> m_matches;
    std::vector<Cell> m_cells;
};

}

std::vector<SearchMatch> searchText(Emulator& terminal, Pattern& pattern, size_t most)
{
    return Search(terminal, pattern, most).run();
}

}
