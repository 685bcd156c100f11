#pragma once

#include "Terminal/Grid/ClusterTable.h"
#include "Terminal/Grid/HistoryPage.h"
#include "Terminal/Grid/Kernels.h"
#include "Terminal/Grid/StyleTable.h"
#include "Terminal/Grid/TextKernels.h"

#include <array>
#include <deque>

namespace corvane::terminal {

/// The lines that have left the screen, as text and runs. A line gets its number when its first row leaves; the number
/// is reused only if the line comes back to the screen. Lines are wrapped when they are read, at the width of the
/// reader.
class Scrollback {
public:
    struct Limits {
        size_t lines = 10'000;
        size_t bytes = 256 << 20;
    };
    struct Position {
        uint64_t line;
        uint32_t offset;
    };

    Scrollback(StyleTable& styles, ClusterTable& clusters, Limits limits);

    /// Adds the row and returns the position of its text. It continues the last line if that ended with a wrapped row.
    Position push(const Row& row, int columns);
    /// Ends the last line, even if its last row was wrapped.
    void endLine();
    bool isOpen() const { return m_open; }

    uint64_t firstLine() const;
    uint64_t lineEnd() const { return m_nextLine; } ///< one past the last line
    size_t lines() const { return size_t(lineEnd() - firstLine()); }
    size_t rows(int columns) const;
    /// `number` is at least `firstLine` and below `lineEnd`. The line's views are valid until the next change.
    HistoryLine line(uint64_t number) const;
    const Style& style(uint64_t number, uint16_t pageStyle) const;

    /// The line as cells that refer to the tables of styles and clusters.
    void unpack(uint64_t number, std::vector<Cell>& cells);
    /// Drops the last line.
    void removeLast();
    void clear();
    void setLimits(Limits limits);

    size_t bytes() const;
    size_t limitLines() const { return m_limits.lines; }
    /// Compresses up to `count` uncompressed pages, the oldest first; false if there was none.
    bool compress(size_t count);
    /// To be called after the styles were renumbered.
    void stylesCollected() { ++m_epoch; }
    template <typename Visit> void eachLink(Visit visit) const
    {
        for (const HistoryPage& page : m_pages) {
            for (const Style& style : page.styles) {
                if (style.link)
                    visit(style.link);
            }
        }
    }
    const std::deque<HistoryPage>& pages() const { return m_pages; }

private:
    struct CachedStyle {
        StyleId id = 0;
        uint32_t epoch = 0;
        uint16_t pageStyle = 0;
    };

    size_t spaceWith(size_t bytes) const;
    bool hasRoom(size_t bytes) const;
    void makeRoom(size_t bytes);
    void pushStyles(const Row& row, int count);
    void pushComplex(const Row& row, int count);
    void addShapes(const PackedText& packed);
    void addStyleRun(uint16_t style, size_t count);
    void addShapeRun(ShapeRun run);
    uint16_t pageStyle(StyleId id);
    const HistoryPage& pageOf(uint64_t number) const;
    HistoryLine openLine() const;
    void commit(bool joined);
    void trim();

    StyleTable& m_styles;
    ClusterTable& m_clusters;
    Limits m_limits;
    const Kernels& m_kernels = Kernels::instance();
    const TextKernels& m_textKernels = TextKernels::instance();
    std::deque<HistoryPage> m_pages;
    uint64_t m_nextLine = 0;
    // The line being built at the end of the last page
    bool m_open = false;
    uint32_t m_cells = 0;
    uint32_t m_text = 0;
    LineSize m_lineSize = LineSize::Single;
    bool m_wide = false;
    std::vector<StyleRun> m_styleRuns;
    std::vector<ShapeRun> m_shapeRuns;
    std::array<CachedStyle, 256> m_styleCache;
    uint32_t m_epoch = 1;
    size_t m_closedBytes = 0; // of all pages except the last
    size_t m_nextToCompress = 0;
    mutable uint64_t m_thawed[2] = { UINT64_MAX, UINT64_MAX }; // first lines of the compressed pages read last
};

}
