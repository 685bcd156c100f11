#pragma once

#include "Terminal/Grid/Row.h"
#include "Terminal/Grid/Style.h"
#include "Terminal/Grid/TextKernels.h"

#include <memory>
#include <string_view>
#include <vector>

namespace corvane::terminal {

/// Consecutive cells with one style; `style` is a number of the page.
struct StyleRun {
    uint16_t count;
    uint16_t style;
};

/// A logical line as stored in a page: UTF-8 text with a zero for each blank cell, followed by runs. Without style runs
/// all cells have the default style; without shape runs each byte is one cell.
struct HistoryLine {
    std::string_view text;
    const StyleRun* styles = nullptr; // may be unaligned: read with `run`
    const ShapeRun* shapes = nullptr;
    uint32_t cells = 0;
    uint16_t styleCount = 0;
    uint16_t shapeCount = 0;
    LineSize size = LineSize::Single;
    bool wide = false; ///< contains characters that take two cells
    bool joined = false; ///< continues in the next line, because it became too long

    template <typename Run> static Run run(const Run* runs, size_t index)
    {
        Run copy;
        std::memcpy(&copy, reinterpret_cast<const char*>(runs) + index * sizeof(Run), sizeof copy);
        return copy;
    }
};

/// About 64 KB of lines. Pages that were not read lately are compressed.
class HistoryPage {
public:
    static constexpr size_t ordinarySize = 64 * 1024;
    static constexpr size_t maxStyles = 4096;

    HistoryPage(uint64_t firstLine, size_t capacity);

    uint64_t firstLine() const { return m_firstLine; }
    uint64_t endLine() const { return m_firstLine + m_lines; }
    uint32_t lines() const { return m_lines; }
    uint32_t longestLine() const { return m_longest; }
    size_t room() const { return m_bytes ? m_capacity - m_used : 0; }
    bool isCold() const { return !m_bytes; }
    size_t bytes() const;

    std::vector<Style> styles; ///< 0 is the default

    /// The free end of the page, where the next line is built, after the space for its header.
    char* textBegin() { return m_bytes.get() + m_used + headerSize; }
    /// Completes the line whose text is at `textBegin`.
    void commit(const HistoryLine& line);
    /// Drops the last line.
    void removeLast();

    /// `index` is the line's position in the page. Consecutive lookups are cheap.
    HistoryLine line(uint32_t index) const;

    /// The memory of all lines, including what is between them: text that does not occur here is in no line.
    std::string_view text() const { return { data(), m_used }; }
    /// The number of rows of all lines at this width.
    size_t rows(int columns) const;

    void compress();
    /// Drops the decompressed copy of a cold page.
    void cool() const { m_thawed.reset(); }

    static constexpr size_t headerSize = 12;

private:
    /// In place of the length, for lines whose number of rows cannot be computed from it.
    static constexpr uint16_t uneven = UINT16_MAX;

    HistoryLine decode(size_t offset, size_t* end) const;
    const char* data() const;

    uint64_t m_firstLine;
    std::unique_ptr<char[]> m_bytes;
    std::vector<uint8_t> m_packed;
    size_t m_capacity;
    size_t m_used = 0;
    uint32_t m_lines = 0;
    uint32_t m_longest = 0;
    mutable std::unique_ptr<char[]> m_thawed; // of a cold page that was read
    mutable uint32_t m_cursorIndex = 0;
    mutable size_t m_cursorOffset = 0;
    std::vector<uint16_t> m_lengths; // of each line, or `uneven`
    mutable int m_rowsColumns = 0;
    mutable size_t m_rows = 0;
};

/// The number of rows that the line takes at this width; at least one.
size_t rowsOf(const HistoryLine& line, int columns);

}
