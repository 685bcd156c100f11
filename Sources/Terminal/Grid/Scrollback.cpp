#include "Terminal/Grid/Scrollback.h"

#include "Terminal/Grid/Wrapping.h"
#include "Terminal/Text/Utf8.h"

#include <bit>
#include <cassert>
#include <utility>

namespace corvane::terminal {

namespace {

// A longer line is continued as a new one, joined to it.
constexpr uint32_t maxCells = 16 * 1024;
constexpr uint32_t maxText = 40'000;
constexpr size_t maxRuns = 4096;
constexpr size_t maxCharacterBytes = 4 * ClusterTable::maxLength;

}

Scrollback::Scrollback(StyleTable& styles, ClusterTable& clusters, Limits limits)
    : m_styles(styles)
    , m_clusters(clusters)
    , m_limits(limits)
{
}

Scrollback::Position Scrollback::push(const Row& row, int columns)
{
    if (columns == 1 && row.cells[0].isSqueezed()) {
        auto cells = stretched(row.cells[0]);
        Row whole = row;
        whole.cells = cells.data();
        whole.used = uint16_t(cells.size());
        return push(whole, int(cells.size()));
    }
    int count = row.wrapped ? columns : std::min(columns, row.contentLength());
    if (row.wrapped && row.complex && row.cells[columns - 1].isFiller())
        --count;
    if (m_open
        && (m_cells + uint32_t(count) > maxCells || m_text > maxText || m_styleRuns.size() > maxRuns
            || m_shapeRuns.size() > maxRuns)) {
        commit(true);
    }
    if (!m_open) {
        m_open = true;
        m_cells = m_text = 0;
        m_lineSize = row.size;
        m_wide = false;
        m_styleRuns.clear();
        m_shapeRuns.clear();
        ++m_nextLine;
    }
    const Position position { m_nextLine - 1, m_cells };
    if (row.complex) {
        pushComplex(row, count);
    } else {
        makeRoom(size_t(count) + (row.styled ? size_t(count) * sizeof(StyleRun) : 0) + 2 * sizeof(StyleRun));
        m_kernels.narrow(reinterpret_cast<uint8_t*>(m_pages.back().textBegin() + m_text),
            reinterpret_cast<const uint64_t*>(row.cells), size_t(count));
        m_text += uint32_t(count);
        if (!m_shapeRuns.empty())
            addShapeRun({ 1, 1, uint16_t(count) });
    }
    if (row.styled)
        pushStyles(row, count);
    else if (!m_styleRuns.empty())
        addStyleRun(0, size_t(count));
    m_cells += uint32_t(count);
    if (!row.wrapped)
        commit(false);
    return position;
}

void Scrollback::endLine()
{
    if (m_open)
        commit(false);
}

HistoryLine Scrollback::openLine() const
{
    HistoryLine line;
    line.text = { const_cast<HistoryPage&>(m_pages.back()).textBegin(), m_text };
    line.cells = m_cells;
    line.styles = m_styleRuns.data();
    line.styleCount = uint16_t(m_styleRuns.size());
    line.shapes = m_shapeRuns.data();
    line.shapeCount = uint16_t(m_shapeRuns.size());
    line.size = m_lineSize;
    line.wide = m_wide;
    return line;
}

void Scrollback::commit(bool joined)
{
    assert(m_pages.back().room() >= spaceWith(0)); // ensured by the code that added to the line
    HistoryLine line = openLine();
    line.joined = joined;
    m_pages.back().commit(line);
    m_open = false;
}

/// The size of the open line with its runs and `bytes` more.
size_t Scrollback::spaceWith(size_t bytes) const
{
    return HistoryPage::headerSize + m_text + bytes + m_styleRuns.size() * sizeof(StyleRun)
        + m_shapeRuns.size() * sizeof(ShapeRun);
}

bool Scrollback::hasRoom(size_t bytes) const
{
    return !m_pages.empty() && m_pages.back().room() >= spaceWith(bytes)
        && m_pages.back().styles.size() < HistoryPage::maxStyles;
}

/// Starts a new page if the last one has not enough room.
void Scrollback::makeRoom(size_t bytes)
{
    if (hasRoom(bytes))
        return;
    HistoryPage page(m_nextLine - 1, std::max(HistoryPage::ordinarySize, spaceWith(bytes)));
    ++m_epoch;
    if (!m_pages.empty()) {
        HistoryPage& old = m_pages.back();
        page.styles.reserve(old.styles.size()); // the new page usually needs about as many
        std::memcpy(page.textBegin(), old.textBegin(), m_text);
        std::vector<uint16_t> renumbered(old.styles.size());
        for (StyleRun& run : m_styleRuns) {
            if (run.style && !renumbered[run.style]) {
                page.styles.push_back(old.styles[run.style]);
                renumbered[run.style] = uint16_t(page.styles.size() - 1);
            }
            run.style = renumbered[run.style];
        }
        m_closedBytes += old.bytes();
    }
    m_pages.push_back(std::move(page));
    trim();
}

void Scrollback::addStyleRun(uint16_t style, size_t count)
{
    if (count == 0)
        return;
    if (!m_styleRuns.empty() && m_styleRuns.back().style == style)
        m_styleRuns.back().count = uint16_t(m_styleRuns.back().count + count);
    else
        m_styleRuns.push_back({ uint16_t(count), style });
}

void Scrollback::pushStyles(const Row& row, int count)
{
    if (count == 0)
        return;
    if (m_styleRuns.empty())
        addStyleRun(0, m_cells);
    const auto* const cells = reinterpret_cast<const uint64_t*>(row.cells);
    constexpr int piece = 64;
    int from = 0;
    for (int at = 0; at < count; at += piece) {
        const auto length = size_t(std::min(count - at, piece + 1));
        for (uint64_t ends = m_kernels.lastOfStyle(cells + at, length); ends; ends &= ends - 1) {
            const int end = at + std::countr_zero(ends) + 1;
            addStyleRun(pageStyle(row.cells[from].style()), size_t(end - from));
            from = end;
        }
    }
    addStyleRun(pageStyle(row.cells[from].style()), size_t(count - from));
}

uint16_t Scrollback::pageStyle(StyleId id)
{
    if (id == 0)
        return 0;
    CachedStyle& cached = m_styleCache[id % m_styleCache.size()];
    if (cached.id != id || cached.epoch != m_epoch) {
        m_pages.back().styles.push_back(m_styles[id]);
        cached = { id, m_epoch, uint16_t(m_pages.back().styles.size() - 1) };
    }
    return cached.pageStyle;
}

void Scrollback::addShapeRun(ShapeRun run)
{
    if (run.count == 0)
        return;
    if (!m_shapeRuns.empty()) {
        ShapeRun& last = m_shapeRuns.back();
        if (last.width == run.width && last.bytes == run.bytes && last.count + run.count <= UINT16_MAX) {
            last.count = uint16_t(last.count + run.count);
            return;
        }
    }
    m_shapeRuns.push_back(run);
}

void Scrollback::addShapes(const PackedText& packed)
{
    if (packed.characters == 0)
        return;
    ShapeRun runs[TextKernels::mostRuns];
    const size_t count = m_textKernels.shapes(packed, runs);
    addShapeRun(runs[0]);
    m_shapeRuns.insert(m_shapeRuns.end(), runs + 1, runs + count);
    m_wide |= packed.wide != 0;
}

void Scrollback::pushComplex(const Row& row, int count)
{
    const size_t needed
        = size_t(count) * (4 + sizeof(StyleRun) + sizeof(ShapeRun)) + 4 * sizeof(StyleRun) + TextKernels::writeAhead;
    // Clusters are only counted if there may not be room for all cells.
    if (!hasRoom(needed + size_t(count) * maxCharacterBytes)) {
        const auto clusters = std::count_if(row.cells, row.cells + count, [](Cell cell) { return cell.isCluster(); });
        makeRoom(needed + size_t(clusters) * maxCharacterBytes);
    }
    if (m_shapeRuns.empty() && m_cells)
        m_shapeRuns.push_back({ 1, 1, uint16_t(m_cells) });
    char* const begin = m_pages.back().textBegin();
    char* to = begin + m_text;
    for (int i = 0; i < count;) {
        const Cell first = row.cells[i];
        if (first.isCluster()) {
            char* const from = to;
            for (const char32_t point : m_clusters[first.content()])
                to += encodeUtf8(point, to);
            addShapeRun({ uint8_t(first.width()), uint8_t(to - from), 1 });
            m_wide |= first.width() == 2;
            i += first.width();
            continue;
        }
        const PackedText packed = m_textKernels.pack(row.cells + i, std::min(size_t(count - i), TextKernels::most), to);
        addShapes(packed);
        to += packed.bytes;
        i += int(packed.cells);
    }
    m_text = uint32_t(to - begin);
}

uint64_t Scrollback::firstLine() const
{
    if (m_pages.empty())
        return m_nextLine;
    const uint64_t allowed = m_nextLine > m_limits.lines ? m_nextLine - m_limits.lines : 0;
    return std::max(m_pages.front().firstLine(), allowed);
}

void Scrollback::trim()
{
    while (m_pages.size() > 1
        && (m_closedBytes + HistoryPage::ordinarySize > m_limits.bytes
            || m_nextLine - m_pages.front().endLine() >= m_limits.lines)) {
        m_closedBytes -= m_pages.front().bytes();
        m_pages.pop_front();
        m_nextToCompress -= m_nextToCompress > 0;
    }
}

size_t Scrollback::bytes() const
{
    return m_closedBytes + (m_pages.empty() ? 0 : m_pages.back().bytes());
}

void Scrollback::setLimits(Limits limits)
{
    m_limits = limits;
    if (!m_pages.empty())
        trim();
}

void Scrollback::clear()
{
    m_pages.clear();
    m_open = false;
    m_closedBytes = m_nextToCompress = 0;
}

const HistoryPage& Scrollback::pageOf(uint64_t number) const
{
    const auto after = std::upper_bound(m_pages.begin(), m_pages.end(), number,
        [](uint64_t line, const HistoryPage& page) { return line < page.firstLine(); });
    assert(after != m_pages.begin());
    return *std::prev(after);
}

HistoryLine Scrollback::line(uint64_t number) const
{
    if (m_open && number + 1 == m_nextLine)
        return openLine();
    const HistoryPage& page = pageOf(number);
    if (page.isCold() && page.firstLine() != m_thawed[0]) {
        if (m_thawed[1] >= m_pages.front().firstLine() && m_thawed[1] < m_nextLine)
            pageOf(m_thawed[1]).cool();
        m_thawed[1] = std::exchange(m_thawed[0], page.firstLine());
    }
    return page.line(uint32_t(number - page.firstLine()));
}

const Style& Scrollback::style(uint64_t number, uint16_t pageStyle) const
{
    return pageOf(number).styles[pageStyle];
}

size_t Scrollback::rows(int columns) const
{
    size_t rows = 0;
    const uint64_t first = firstLine();
    for (const HistoryPage& page : m_pages) {
        if (page.firstLine() >= first) {
            rows += page.rows(columns);
            continue;
        }
        for (uint64_t number = first; number < page.endLine(); ++number)
            rows += rowsOf(page.line(uint32_t(number - page.firstLine())), columns);
    }
    return rows + (m_open ? rowsOf(openLine(), columns) : 0);
}

void Scrollback::unpack(uint64_t number, std::vector<Cell>& cells)
{
    const HistoryLine line = this->line(number);
    cells.clear();
    cells.reserve(line.cells);
    if (line.shapeCount == 0) {
        for (const char byte : line.text)
            cells.push_back(Cell::character(uint8_t(byte), 0));
    }
    const char* text = line.text.data();
    for (size_t i = 0; i < line.shapeCount; ++i) {
        const ShapeRun run = HistoryLine::run(line.shapes, i);
        const auto part = run.width == 2 ? Cell::Part::WideHead : Cell::Part::Narrow;
        for (int n = 0; n < run.count; ++n, text += run.bytes) {
            const std::u32string points = decodeUtf8({ text, run.bytes });
            cells.push_back(points.size() == 1 ? Cell::character(points[0], 0, part)
                                               : Cell::cluster(m_clusters.intern(points), 0, part));
            if (run.width == 2)
                cells.push_back(Cell::character(0, 0, Cell::Part::WideTail));
        }
    }
    size_t at = 0;
    for (size_t i = 0; i < line.styleCount; ++i) {
        const StyleRun run = HistoryLine::run(line.styles, i);
        const StyleId id = run.style ? m_styles.intern(style(number, run.style)) : 0;
        for (size_t end = std::min(at + run.count, cells.size()); at < end; ++at)
            cells[at] = cells[at].withStyle(id);
    }
}

void Scrollback::removeLast()
{
    --m_nextLine;
    if (m_open) {
        m_open = false;
    } else {
        m_pages.back().removeLast();
    }
    if (m_pages.back().lines() > 0)
        return;
    m_pages.pop_back();
    ++m_epoch;
    if (!m_pages.empty())
        m_closedBytes -= m_pages.back().bytes();
    m_nextToCompress = std::min(m_nextToCompress, m_pages.size());
}

bool Scrollback::compress(size_t count)
{
    bool any = false;
    for (; count > 0 && m_nextToCompress + 1 < m_pages.size(); ++m_nextToCompress, --count) {
        HistoryPage& page = m_pages[m_nextToCompress];
        m_closedBytes -= page.bytes();
        page.compress();
        m_closedBytes += page.bytes();
        any = true;
    }
    return any;
}

}
