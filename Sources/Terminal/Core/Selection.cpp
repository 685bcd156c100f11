#include "Terminal/Core/Selection.h"

#include "Terminal/Core/Emulator.h"

namespace corvane::terminal {

namespace {

/// Rows of the screen and the history by number. Reading downwards is fast.
class Reader {
public:
    explicit Reader(Emulator& terminal)
        : t(terminal)
        , m_view(terminal.history, terminal.columns())
        , m_first(terminal.screen->history ? -int64_t(m_view.rows()) : 0)
    {
    }

    int64_t first() const { return m_first; }
    int64_t last() const { return t.rows() - 1; }

    const RowView& row(int64_t index)
    {
        if (index == m_at)
            return m_row;
        if (index < 0) {
            m_place = m_place && index == m_at + 1 ? m_view.next(*m_place) : m_view.addressOf(index);
            m_view.read(*m_place, m_row);
        } else {
            m_place.reset();
            t.readRow(index, m_row);
        }
        m_at = index;
        return m_row;
    }

    Cell cell(Position at)
    {
        const RowView& cells = row(at.row);
        return at.column < int(cells.cells.size()) ? cells.cells[size_t(at.column)] : Cell();
    }

    bool continues(int64_t index) { return index > m_first && row(index).continued; }

    /// Moves to the next or previous cell, across wrapped rows; false at the end of the line.
    bool step(Position& at, int direction)
    {
        at.column += direction;
        if (at.column >= 0 && at.column < t.columns())
            return true;
        if (direction < 0) {
            if (!continues(at.row))
                return false;
            --at.row;
            at.column = t.columns() - 1;
            return true;
        }
        if (at.row == last() || !continues(at.row + 1))
            return false;
        ++at.row;
        at.column = 0;
        return true;
    }

private:
    Emulator& t;
    HistoryView m_view;
    int64_t m_first;
    int64_t m_at = INT64_MIN;
    std::optional<HistoryView::Address> m_place; ///< the row's, if it is in the history
    RowView m_row;
};

bool isWordCharacter(Cell cell)
{
    if (cell.part() == Cell::Part::WideTail || cell.isCluster())
        return true;
    const char32_t point = cell.content();
    constexpr std::u32string_view joiners = U"-_./~:@%+#=?&";
    return (point >= '0' && point <= '9') || (point >= 'a' && point <= 'z') || (point >= 'A' && point <= 'Z')
        || point >= 0xa1 || (point && joiners.find(point) != std::u32string_view::npos);
}

Position wordEnd(Reader& reader, Position at, int direction)
{
    constexpr int most = 4096;
    const bool isWord = isWordCharacter(reader.cell(at));
    Position next = at;
    for (int steps = 0; steps < most && reader.step(next, direction); ++steps) {
        const bool inWord = isWordCharacter(reader.cell(next));
        const bool sameKind = inWord == isWord && (isWord || reader.cell(next).content() == reader.cell(at).content());
        if (!sameKind)
            break;
        at = next;
    }
    return at;
}

void appendCells(Emulator& t, std::string& text, const RowView& row, int from, int to)
{
    const int end = std::min(to, int(row.cells.size()));
    for (int column = from; column < end; ++column) {
        const Cell cell = row.cells[size_t(column)];
        if (cell.part() == Cell::Part::WideTail || cell.isFiller())
            continue;
        if (cell.isCluster())
            text += encodeUtf8(t.clusters[cell.content()]);
        else
            appendUtf8(text, cell.content() ? cell.content() : U' ');
    }
}

/// The number of cells without trailing ones that hold no text.
int writtenLength(const RowView& row)
{
    size_t length = row.cells.size();
    while (length > 0 && row.cells[length - 1].isBlank())
        --length;
    return int(length);
}

}

void Selection::set(SelectionMode mode, Position from, Position to)
{
    clear();
    m_mode = mode;
    m_from = t.anchorAt(from.row, from.column);
    m_to = t.anchorAt(to.row, to.column);
    m_onAlternate = t.screen == &t.alternate;
    m_active = true;
}

void Selection::clear()
{
    if (!std::exchange(m_active, false))
        return;
    Anchors& anchors = (m_onAlternate ? t.alternate : t.primary).anchors;
    anchors.remove(m_from);
    anchors.remove(m_to);
}

std::optional<Selection::Range> Selection::range()
{
    if (!m_active || m_onAlternate != (t.screen == &t.alternate))
        return {};
    const auto from = t.find(*t.screen, m_from);
    const auto to = t.find(*t.screen, m_to);
    if (!from || !to)
        return {};
    Range range { m_mode, { from->first, from->second }, { to->first, to->second } };
    if (m_mode == SelectionMode::Block) {
        const auto [left, right] = std::minmax(range.first.column, range.last.column);
        const auto [top, bottom] = std::minmax(range.first.row, range.last.row);
        return Range { m_mode, { top, left }, { bottom, right } };
    }
    if (range.last < range.first)
        std::swap(range.first, range.last);
    Reader reader(t);
    if (m_mode == SelectionMode::Word) {
        range.first = wordEnd(reader, range.first, -1);
        range.last = wordEnd(reader, range.last, 1);
    } else if (m_mode == SelectionMode::Line) {
        while (reader.continues(range.first.row))
            --range.first.row;
        while (range.last.row < reader.last() && reader.continues(range.last.row + 1))
            ++range.last.row;
        range.first.column = 0;
        range.last.column = t.columns() - 1;
    }
    return range;
}

std::string Selection::text()
{
    const auto at = range();
    if (!at)
        return {};
    Reader reader(t);
    std::string text;
    for (int64_t row = at->first.row; row <= at->last.row; ++row) {
        const bool isBlock = at->mode == SelectionMode::Block;
        const RowView view = reader.row(row); // a copy: the reader overwrites its own
        if (row > at->first.row && (isBlock || !view.continued))
            text.push_back('\n');
        const int from = isBlock || row == at->first.row ? at->first.column : 0;
        int to = isBlock || row == at->last.row ? at->last.column + 1 : t.columns();
        const bool goesOn = row < reader.last() && row < at->last.row && !isBlock && reader.continues(row + 1);
        if (!goesOn)
            to = std::min(to, writtenLength(view));
        else if (int(view.cells.size()) < to)
            to = int(view.cells.size());
        appendCells(t, text, view, from, to);
    }
    return text;
}

}
