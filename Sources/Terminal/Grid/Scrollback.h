#pragma once

#include "Terminal/Grid/ClusterTable.h"
#include "Terminal/Grid/HistoryPage.h"
#include "Terminal/Grid/Kernels.h"
#include "Terminal/Grid/StyleTable.h"
#include "Terminal/Grid/TextKernels.h"

#include <array>
#include <deque>

namespace corvane::terminal {

/// The lines that have left the screen, as text and runs rather than cells. A line is numbered when it begins to
/// leave, and only one that comes back to the screen gives its number up again. Wrapping is worked out for the width
/// at which it is looked at.
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

    /// Takes the row; answers where its text begins. It continues the line before if that one's row was wrapped.
    Position push(const Row& row, int columns);
    /// The last line ends here, although its last row was wrapped.
    void endLine();
    bool isOpen() const { return m_open; }

    uint64_t firstLine() const;
    uint64_t lineEnd() const { return m_nextLine; } ///< one past the last line
    size_t lines() const { return size_t(lineEnd() - firstLine()); }
    size_t rows(int columns) const;
    /// `number` is at least `firstLine` and below `lineEnd`. The line's views hold until the next change.
    HistoryLine line(uint64_t number) const;
    const Style& style(uint64_t number, uint16_t pageStyle) const;

    /// The line as cells, whose styles and clusters are those of the tables.
    void unpack(uint64_t number, std::vector<Cell>& cells);
    /// Takes the last line back.
    void removeLast();
    void clear();
    void setLimits(Limits limits);

    size_t bytes() const;
    size_t limitLines() const { return m_limits.lines; }
    /// Compresses up to `count` pages that are still warm, the oldest first; false if there was none.
    bool compress(size_t count);
    /// The styles' numbers are no longer what they were.
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
    // The line that is being built at the end of the last page, not yet committed.
    bool m_open = false;
    uint32_t m_cells = 0;
    uint32_t m_text = 0;
    LineSize m_lineSize = LineSize::Single;
    bool m_wide = false;
    std::vector<StyleRun> m_styleRuns;
    std::vector<ShapeRun> m_shapeRuns;
    std::array<CachedStyle, 256> m_styleCache;
    uint32_t m_epoch = 1;
    size_t m_closedBytes = 0; // of all pages but the last
    size_t m_nextToCompress = 0;
    mutable uint64_t m_thawed[2] = { UINT64_MAX, UINT64_MAX }; // first lines of the cold pages looked at last
};

}
