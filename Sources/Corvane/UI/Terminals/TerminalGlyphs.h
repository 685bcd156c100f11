#pragma once

#include <QFont>
#include <QImage>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane {

/// One character or cluster as it is drawn, in device pixels. The picture is as high as a cell and may stand out of its
/// cell by `margin` on both sides.
struct TerminalGlyph {
    int width = 0; ///< 0 where there is nothing to draw
    int margin = 0;
    std::vector<uint8_t> mask; ///< how much of each pixel the ink covers
    QImage picture; ///< premultiplied, in place of the mask: an emoji in its colours
};

/// The characters of one font and size, drawn once each.
class TerminalGlyphs {
public:
    /// `pixelSize` in device pixels.
    TerminalGlyphs(const QString& family, int pixelSize);

    int cellWidth() const { return m_cellWidth; }
    int cellHeight() const { return m_cellHeight; }
    int ascent() const { return m_ascent; }
    int lineWidth() const { return m_lineWidth; } ///< of underlines and bars
    const QFont& font() const { return m_fonts[0]; }

    enum Face { Regular, Bold, Italic, BoldItalic };
    /// `cells` is how many it takes up.
    const TerminalGlyph& glyph(char32_t character, int cells, Face face);
    const TerminalGlyph& cluster(std::u32string_view text, int cells, Face face);

private:
    TerminalGlyph draw(std::u32string_view text, int cells, Face face) const;

    static constexpr size_t mostKept = 20'000;
    static constexpr char32_t plainCount = 0x180;
    QFont m_fonts[4];
    QFont m_emojiFont;
    int m_cellWidth = 0;
    int m_cellHeight = 0;
    int m_ascent = 0;
    int m_lineWidth = 1;
    std::unique_ptr<TerminalGlyph> m_plain[4][plainCount]; ///< narrow ones
    std::unordered_map<std::u32string, TerminalGlyph> m_glyphs; ///< face and cells stand before the text
};

/// The desktop's font of fixed width, or one that is one.
QString terminalFontFamily();

}
