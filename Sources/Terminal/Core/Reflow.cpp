// Resizing. Lines on the screen are rewrapped; lines in the history are not touched, since they are wrapped only when
// read.

#include "Terminal/Core/Emulator.h"
#include "Terminal/Grid/Wrapping.h"

namespace corvane::terminal {

namespace {

/// A line of text between its old rows and its new ones.
struct Line {
    std::vector<Cell> cells;
    LineSize size = LineSize::Single;
    bool open = false; ///< the last row is marked as wrapped, but nothing follows it
};

/// A position in the text that has to be found again.
struct Follower {
    size_t line = 0;
    size_t offset = 0;
    int row = 0; // the result
    int column = 0;
};

void fillRow(Row& row, std::span<const Cell> cells, int columns)
{
    if (columns == 1 && !cells.empty() && cells[0].part() == Cell::Part::WideHead) {
        row.cells[0] = cells[0].withPart(Cell::Part::Filler);
        row.styled = cells[0].style() != 0;
        row.complex = true;
        row.touch(1);
        return;
    }
    const size_t count = std::min(cells.size(), size_t(columns));
    for (size_t i = 0; i < count; ++i) {
        Cell cell = cells[i];
        const bool halved = (cell.isSqueezed() && columns > 1)
            || (cell.part() == Cell::Part::WideHead && i + 1 >= count)
            || (cell.part() == Cell::Part::WideTail && (i == 0 || row.cells[i - 1].part() != Cell::Part::WideHead));
        if (halved)
            cell = Cell::erased(cell.style());
        row.cells[i] = cell;
        row.styled |= cell.style() != 0;
        row.complex |= cell.content() >= 0x80 || cell.isCluster() || cell.part() != Cell::Part::Narrow;
    }
    row.touch(int(count));
}

/// Gathers rows into lines and lays them out again.
class Reflow {
public:
    Reflow(Emulator& terminal, Screen& screen, Size size)
        : t(terminal)
        , m_screen(screen)
        , m_size(size)
    {
    }

    void run(bool hasCursor)
    {
        Cursor& cursor = t.cursor;
        SavedCursor& saved = m_screen.saved;
        const int cursorRow = hasCursor ? cursor.row : saved.row;
        const bool full = gather(cursorRow);
        const size_t cursorAt = follow(cursorRow, hasCursor ? cursor.column + cursor.pendingWrap : saved.column);
        const size_t savedAt = follow(saved.row, saved.column);
        for (const Anchors::Id id : m_screen.anchors.onScreen())
            m_anchors.push_back({ id, followAnchor(m_screen.anchors[id]) });
        pullOpenLine();
        layOut();
        if (full)
            pullLines();
        place();
        const auto column = [&](const Follower& at) {
            return std::clamp(at.column, 0, m_size.columns - 1);
        };
        const auto row = [&](const Follower& at) {
            return std::clamp(at.row - m_first, 0, m_size.rows - 1);
        };
        const Follower& at = m_followers[cursorAt];
        if (hasCursor) {
            cursor.row = row(at);
            cursor.pendingWrap = at.column == m_size.columns && t.modes.has(Mode::AutoWrap);
            cursor.column = column(at);
        }
        saved.row = row(m_followers[savedAt]);
        saved.column = column(m_followers[savedAt]);
        saved.pendingWrap = false;
    }

private:
    /// Collects the rows as lines, without trailing blank ones. True if there were no such rows.
    bool gather(int cursorRow)
    {
        const Grid& grid = m_screen.grid;
        int last = grid.rows() - 1;
        while (last > cursorRow && grid.row(last).contentLength() == 0 && !grid.row(last).anchored
            && !grid.row(last - 1).wrapped)
            --last;
        m_lineOfRow.resize(size_t(grid.rows()));
        bool continues = false;
        for (int index = 0; index <= last; ++index) {
            const Row& row = grid.row(index);
            if (!continues)
                m_lines.push_back({ {}, row.size, false });
            Line& line = m_lines.back();
            m_lineOfRow[size_t(index)] = { m_lines.size() - 1, line.cells.size() };
            const int end = row.size == LineSize::Single ? grid.columns() : (grid.columns() + 1) / 2;
            int count = row.wrapped ? end : std::min(end, row.contentLength());
            if (row.wrapped && row.cells[end - 1].isFiller())
                --count;
            if (row.cells[0].isSqueezed()) {
                const auto wide = stretched(row.cells[0]);
                line.cells.insert(line.cells.end(), wide.begin(), wide.end());
            } else {
                line.cells.insert(line.cells.end(), row.cells, row.cells + count);
            }
            continues = row.wrapped;
        }
        m_lines.back().open = continues;
        // Only cursors below the text reach rows past the last one.
        for (int index = last + 1; index < grid.rows(); ++index)
            m_lineOfRow[size_t(index)] = { m_lines.size() - 1 + size_t(index - last), 0 };
        return last == grid.rows() - 1;
    }

    size_t follow(int row, int column)
    {
        const int index = std::clamp(row, 0, m_screen.grid.rows() - 1);
        const auto& [line, offset] = m_lineOfRow[size_t(index)];
        const bool isBehindSqueezed = column > 0 && m_screen.grid.row(index).cells[0].isSqueezed();
        m_followers.push_back({ line, offset + size_t(column) + isBehindSqueezed, 0, 0 });
        return m_followers.size() - 1;
    }

    size_t followAnchor(const Place& place)
    {
        for (int index = 0; index < m_screen.grid.rows(); ++index) {
            if (m_screen.grid.row(index).id == place.line)
                return follow(index, int(place.offset));
        }
        return follow(0, 0);
    }

    /// A line that starts in the history and ends on the screen is rewrapped as a whole.
    void pullOpenLine()
    {
        Scrollback* const history = m_screen.history;
        if (!history || !history->isOpen() || history->lines() == 0)
            return;
        Line line;
        takeFromHistory(line);
        const size_t head = line.cells.size();
        m_lines.front().cells.insert(m_lines.front().cells.begin(), line.cells.begin(), line.cells.end());
        m_lines.front().size = line.size;
        for (Follower& follower : m_followers) {
            if (follower.line == 0)
                follower.offset += head;
        }
    }

    /// Takes the last line of the history; the anchors in it become followers of line 0. True if the text continues in
    /// the next line.
    bool takeFromHistory(Line& line)
    {
        Scrollback& history = *m_screen.history;
        const uint64_t number = history.lineEnd() - 1;
        line.size = history.line(number).size;
        const bool joined = history.line(number).joined;
        history.unpack(number, line.cells);
        for (const Anchors::Id id : m_screen.anchors.inHistoryFrom(number)) {
            m_followers.push_back({ 0, m_screen.anchors[id].offset, 0, 0 });
            m_anchors.push_back({ id, m_followers.size() - 1 });
        }
        history.removeLast();
        return joined;
    }

    void joinFirstTwo()
    {
        const size_t head = m_lines[0].cells.size();
        m_lines[0].cells.insert(m_lines[0].cells.end(), m_lines[1].cells.begin(), m_lines[1].cells.end());
        m_lines[0].open = m_lines[1].open;
        m_lines.erase(m_lines.begin() + 1);
        for (Follower& follower : m_followers) {
            if (follower.line == 1)
                follower.offset += head;
            follower.line -= follower.line > 0;
        }
    }

    void layOut()
    {
        m_rowsOfLine.clear();
        m_rowCount = 0;
        for (const Line& line : m_lines) {
            m_rowsOfLine.push_back({ m_rowCount, rowStarts(line.cells, widthOf(line.size)) });
            m_rowCount += int(m_rowsOfLine.back().starts.size());
        }
        for (Follower& follower : m_followers) {
            if (follower.line >= m_lines.size()) {
                follower.row = m_rowCount + int(follower.line - m_lines.size());
                follower.column = int(follower.offset);
                continue;
            }
            const LineRows& rows = m_rowsOfLine[follower.line];
            size_t part = rows.starts.size() - 1;
            while (part > 0 && rows.starts[part] > follower.offset)
                --part;
            const Line& line = m_lines[follower.line];
            const size_t begin = rows.starts[part];
            const size_t end = part + 1 < rows.starts.size() ? rows.starts[part + 1] : line.cells.size();
            const bool isSqueezed = widthOf(line.size) == 1 && end - begin == 2;
            follower.row = rows.first + int(part);
            follower.column = int((follower.offset - begin) / (isSqueezed ? 2 : 1));
        }
    }

    /// If the screen was full, fills it with lines from the history rather than leave it half empty.
    void pullLines()
    {
        Scrollback* const history = m_screen.history;
        while (history && m_rowCount < m_size.rows && history->lines() > 0) {
            for (Follower& follower : m_followers)
                ++follower.line;
            Line line;
            const bool joined = takeFromHistory(line);
            m_lines.insert(m_lines.begin(), std::move(line));
            if (joined)
                joinFirstTwo();
            layOut();
        }
    }

    /// The last rows of the layout become the screen; those before it go to the history.
    void place()
    {
        m_first = std::max(0, m_rowCount - m_size.rows);
        // A cursor below the text keeps its row; the text moves up instead.
        m_first = std::max(m_first, m_followers[0].row - m_size.rows + 1);
        Grid next(m_size.columns, m_size.rows);
        Grid leaving(m_size.columns, 1);
        std::vector<std::pair<uint64_t, uint32_t>> left(size_t(m_first), std::pair<uint64_t, uint32_t> {});
        int index = 0;
        for (size_t number = 0; number < m_lines.size(); ++number) {
            const Line& line = m_lines[number];
            const std::vector<size_t>& starts = m_rowsOfLine[number].starts;
            for (size_t part = 0; part < starts.size(); ++part, ++index) {
                const size_t end = part + 1 < starts.size() ? starts[part + 1] : line.cells.size();
                const bool leaves = index < m_first;
                if (!leaves && index - m_first >= m_size.rows)
                    break;
                Row& row = leaves ? leaving.row(0) : next.row(index - m_first);
                if (leaves)
                    leaving.renew(row);
                row.size = line.size;
                fillRow(row, std::span(line.cells).subspan(starts[part], end - starts[part]), widthOf(line.size));
                row.wrapped = part + 1 < starts.size() || line.open;
                if (row.wrapped && int(end - starts[part]) == m_size.columns - 1 && row.size == LineSize::Single
                    && part + 1 < starts.size()) {
                    row.cells[m_size.columns - 1] = Cell::character(0, 0, Cell::Part::Filler);
                    row.complex = true;
                    row.touch(m_size.columns);
                }
                if (!leaves || !m_screen.history || m_screen.history->limitLines() == 0)
                    continue;
                const Scrollback::Position at = m_screen.history->push(row, widthOf(line.size));
                left[size_t(index)] = { at.line, at.offset };
            }
        }
        next.adoptIds(m_screen.grid);
        m_screen.grid = std::move(next);
        for (const auto& [id, follower] : m_anchors)
            placeAnchor(id, m_followers[follower], left);
    }

    int widthOf(LineSize size) const { return size == LineSize::Single ? m_size.columns : (m_size.columns + 1) / 2; }

    void placeAnchor(Anchors::Id id, const Follower& at, const std::vector<std::pair<uint64_t, uint32_t>>& left)
    {
        const int row = at.row - m_first;
        if (row < 0 && at.row < int(left.size()))
            m_screen.anchors.moveToHistory(
                id, left[size_t(at.row)].first, left[size_t(at.row)].second + uint32_t(at.column));
        else
            m_screen.anchors.move(id, m_screen.grid.row(std::clamp(row, 0, m_size.rows - 1)), at.column);
    }

    struct LineRows {
        int first;
        std::vector<size_t> starts;
    };

    Emulator& t;
    Screen& m_screen;
    const Size m_size;
    std::vector<Line> m_lines;
    std::vector<std::pair<size_t, size_t>> m_lineOfRow;
    std::vector<Follower> m_followers; // the first one is the cursor
    std::vector<std::pair<Anchors::Id, size_t>> m_anchors;
    std::vector<LineRows> m_rowsOfLine;
    int m_rowCount = 0;
    int m_first = 0;
};

/// The alternate screen is cropped or padded; its program redraws it.
void cropScreen(Screen& screen, Size size)
{
    Grid next(size.columns, size.rows);
    next.adoptIds(screen.grid);
    for (int index = 0; index < screen.grid.rows(); ++index) {
        const Row& from = screen.grid.row(index);
        if (index >= size.rows) {
            screen.anchors.rowGone(from.id);
            continue;
        }
        Row& to = next.row(index);
        fillRow(to, { from.cells, from.used }, size.columns);
        to.size = from.size;
        to.id = from.id;
        to.anchored = from.anchored;
    }
    screen.grid = std::move(next);
}

}

/// A shell redraws its prompt, counting rows from the prompt's first one. Rewrapping these rows would leave parts of
/// the old prompt behind.
void Emulator::blankPrompt()
{
    const auto isInput = [](const Mark& mark) {
        return mark.kind == PromptMark::Input;
    };
    const auto last = std::find_if_not(marks.rbegin(), marks.rend(), isInput);
    if (screen != &primary || last == marks.rend() || last->kind != PromptMark::Prompt
        || last->redraw != Redraw::Prompt)
        return;
    const auto place = find(primary, last->anchor);
    if (!place || place->first < 0)
        return;
    for (int index = int(place->first), from = place->second; index < rows(); ++index, from = 0) {
        Row& each = row(index);
        each.cutAround(from, size.columns);
        each.fill(from, size.columns, Cell());
        each.wrapped = false;
    }
}

void Emulator::resize(Size wanted)
{
    const Size newSize = wanted.clamped();
    if (newSize == size)
        return;
    ++generation;
    const bool gridChanges = newSize.columns != size.columns || newSize.rows != size.rows;
    if (newSize.columns != size.columns)
        blankPrompt();
    if (gridChanges) {
        const bool onPrimary = screen == &primary;
        Reflow(*this, primary, newSize).run(onPrimary);
        if (!onPrimary)
            cropScreen(alternate, newSize);
    }
    const int oldColumns = size.columns;
    size = newSize;
    if (gridChanges) {
        resetMargins();
        tabs.resize(size_t(size.columns));
        for (int column = (oldColumns + 7) / 8 * 8; column < size.columns; column += 8)
            tabs[size_t(column)] = true;
        if (screen == &alternate)
            moveTo(cursor.row, cursor.column);
        else
            keepInRow();
        touchAll();
    }
    reportSize();
}

}
