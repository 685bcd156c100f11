#pragma once

#include <QFont>
#include <QImage>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane {

/// A character or cluster as drawn, in device pixels. The picture has the height of a cell and may exceed it by
/// `margin` on both sides.
struct TerminalGlyph {
    int width = 0; ///< 0 if there is nothing to draw
    int margin = 0;
    std::vector<uint8_t> mask; ///< the coverage of each pixel
    QImage picture; ///< premultiplied, instead of the mask: a colour emoji
    mutable QPoint atlasPlace; ///< used by TerminalAtlas
    mutable uint32_t atlasRound = 0;
};

/// The glyphs of one font and size, rendered once each.
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
    /// `cells` is its width in cells.
    const TerminalGlyph& glyph(char32_t character, int cells, Face face);
    const TerminalGlyph& cluster(std::u32string_view text, int cells, Face face);
    const TerminalGlyph& wave(); ///< of one cell, for a curly underline

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
    std::optional<TerminalGlyph> m_wave;
    std::unique_ptr<TerminalGlyph> m_plain[4][plainCount]; ///< narrow ones
    std::unordered_map<std::u32string, TerminalGlyph> m_glyphs; ///< keyed by face, cells and text
};

/// The desktop's monospace font, or another one.
QString terminalFontFamily();

}
