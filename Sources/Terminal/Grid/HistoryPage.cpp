#include "Terminal/Grid/HistoryPage.h"

#include <zlib.h>

namespace corvane::terminal {

namespace {

struct Header {
    uint32_t cellsAndFlags; // 24 bits of cells, 2 of line size, then joined and wide
    uint32_t textBytes;
    uint16_t styleCount;
    uint16_t shapeCount;
};

static_assert(sizeof(Header) == HistoryPage::headerSize);

constexpr uint32_t cellMask = 0xffffff;
constexpr int sizeShift = 24;
constexpr uint32_t joinedBit = 1u << 26;
constexpr uint32_t wideBit = 1u << 27;

}

HistoryPage::HistoryPage(uint64_t firstLine, size_t capacity)
    : styles(1)
    , m_firstLine(firstLine)
    , m_bytes(new char[capacity]) // uninitialized: lines are only read where they were written
    , m_capacity(capacity)
{
}

size_t HistoryPage::bytes() const
{
    return (m_bytes ? m_capacity : m_packed.size()) + styles.capacity() * sizeof(Style)
        + m_lengths.capacity() * sizeof(uint16_t);
}

void HistoryPage::commit(const HistoryLine& line)
{
    const Header header { line.cells | uint32_t(line.size) << sizeShift | (line.joined ? joinedBit : 0)
            | (line.wide ? wideBit : 0),
        uint32_t(line.text.size()), line.styleCount, line.shapeCount };
    char* at = m_bytes.get() + m_used;
    std::memcpy(at, &header, sizeof header);
    at += sizeof header + line.text.size();
    if (line.styleCount)
        std::memcpy(at, line.styles, line.styleCount * sizeof(StyleRun));
    at += line.styleCount * sizeof(StyleRun);
    if (line.shapeCount)
        std::memcpy(at, line.shapes, line.shapeCount * sizeof(ShapeRun));
    m_used = size_t(at - m_bytes.get()) + line.shapeCount * sizeof(ShapeRun);
    ++m_lines;
    const bool isEven = line.size == LineSize::Single && !line.wide && line.cells < uneven;
    m_lengths.push_back(isEven ? uint16_t(line.cells) : uneven);
    // A double-width cell takes two columns.
    m_longest = std::max(m_longest, line.size == LineSize::Single ? line.cells : 2 * line.cells);
    m_rowsColumns = 0;
}

void HistoryPage::removeLast()
{
    if (!m_bytes) {
        data();
        m_bytes = std::move(m_thawed);
        m_packed = {};
    }
    const HistoryLine last = line(m_lines - 1);
    m_used = size_t(last.text.data() - data()) - headerSize;
    --m_lines;
    m_lengths.pop_back();
    m_cursorIndex = 0;
    m_cursorOffset = 0;
    m_rowsColumns = 0;
}

const char* HistoryPage::data() const
{
    if (m_bytes)
        return m_bytes.get();
    if (!m_thawed) {
        m_thawed.reset(new char[m_used]);
        uLongf size = m_used;
        uncompress(reinterpret_cast<Bytef*>(m_thawed.get()), &size, m_packed.data(), m_packed.size());
    }
    return m_thawed.get();
}

HistoryLine HistoryPage::decode(size_t offset, size_t* end) const
{
    const char* at = data() + offset;
    Header header;
    std::memcpy(&header, at, sizeof header);
    at += sizeof header;
    HistoryLine line;
    line.text = { at, header.textBytes };
    line.styles = reinterpret_cast<const StyleRun*>(at + header.textBytes);
    line.shapes = reinterpret_cast<const ShapeRun*>(at + header.textBytes + header.styleCount * sizeof(StyleRun));
    line.cells = header.cellsAndFlags & cellMask;
    line.styleCount = header.styleCount;
    line.shapeCount = header.shapeCount;
    line.size = LineSize((header.cellsAndFlags >> sizeShift) & 3);
    line.joined = header.cellsAndFlags & joinedBit;
    line.wide = header.cellsAndFlags & wideBit;
    *end = offset + sizeof header + header.textBytes + header.styleCount * sizeof(StyleRun)
        + header.shapeCount * sizeof(ShapeRun);
    return line;
}

HistoryLine HistoryPage::line(uint32_t index) const
{
    if (index < m_cursorIndex) {
        m_cursorIndex = 0;
        m_cursorOffset = 0;
    }
    size_t end = 0;
    for (; m_cursorIndex < index; ++m_cursorIndex) {
        decode(m_cursorOffset, &end);
        m_cursorOffset = end;
    }
    return decode(m_cursorOffset, &end);
}

size_t HistoryPage::rows(int columns) const
{
    if (m_longest <= uint32_t(columns))
        return m_lines;
    if (m_rowsColumns == columns)
        return m_rows;
    m_rowsColumns = columns;
    m_rows = 0;
    const bool wasThawed = m_thawed != nullptr;
    // Dividing takes too long for a million lines. Both numbers are small enough for this to be exact.
    const uint64_t reciprocal = (uint64_t(1) << 32) / uint64_t(columns) + 1;
    for (uint32_t index = 0; index < m_lines; ++index) {
        const uint32_t length = m_lengths[index];
        m_rows += length == uneven ? rowsOf(line(index), columns)
                                   : (std::max(length, 1u) + uint32_t(columns) - 1) * reciprocal >> 32;
    }
    if (!wasThawed)
        cool();
    return m_rows;
}

void HistoryPage::compress()
{
    if (!m_bytes)
        return;
    uLongf size = compressBound(m_used);
    m_packed.resize(size);
    if (compress2(m_packed.data(), &size, reinterpret_cast<const Bytef*>(m_bytes.get()), m_used, Z_BEST_SPEED)
        != Z_OK) {
        m_packed.clear();
        return;
    }
    m_packed.resize(size);
    m_packed.shrink_to_fit();
    m_bytes.reset();
    m_lengths.shrink_to_fit();
    m_capacity = m_used;
}

size_t rowsOf(const HistoryLine& line, int columns)
{
    const auto width = uint32_t(line.size == LineSize::Single ? columns : (columns + 1) / 2);
    if (line.cells <= width)
        return 1;
    if (!line.wide)
        return (line.cells + width - 1) / width;
    // A wide character that does not fit leaves the last column free.
    size_t rows = 1;
    uint32_t column = 0;
    for (size_t i = 0; i < line.shapeCount; ++i) {
        const ShapeRun run = HistoryLine::run(line.shapes, i);
        for (uint32_t n = 0; n < run.count; ++n) {
            if (column > 0 && column + run.width > width) {
                ++rows;
                column = 0;
            }
            column += run.width;
        }
    }
    return rows;
}

}
