#pragma once

#include "Terminal/Core/Snapshot.h"
#include "UI/Terminals/TerminalAtlas.h"

namespace corvane {

/// The colours for drawing, derived once from a palette.
struct TerminalLook {
    terminal::PaletteState palette {};
    bool isReversed = false;
    bool isTransparent = false; ///< the default background is left out: something is below it

    static TerminalLook of(const terminal::Snapshot& snapshot);
    friend bool operator==(const TerminalLook&, const TerminalLook&) = default;

    terminal::Rgb text() const;
    terminal::Rgb ground() const;
};

double contrastOf(terminal::Rgb one, terminal::Rgb other); ///< from 1 to 21

/// A text colour with a contrast of at least 4.5 to 1: the given one, moved towards black or white as needed.
terminal::Rgb readableOn(terminal::Rgb ground, terminal::Rgb wanted);

/// A textured rectangle: a part of the atlas in a colour, in pixels.
struct TerminalQuad {
    QRect area;
    QRect source;
    QRgb tint = 0; ///< white for a colour emoji
};

/// Draws terminal rows in device pixels: into images, or as quads that a GPU turns into the same image.
class TerminalPainter {
public:
    TerminalPainter(const QString& family, int pixelSize)
        : m_glyphs(family, pixelSize)
        , m_atlas(m_glyphs.cellHeight())
    {
    }

    QSize cell() const { return { m_glyphs.cellWidth(), m_glyphs.cellHeight() }; }
    int lineWidth() const { return m_glyphs.lineWidth(); }

    QImage row(const terminal::ShownRow& row, int columns, const TerminalLook& look);
    /// From bottom to top, above the default background. None if only an image will do: a row of double size, or the
    /// atlas is full.
    std::optional<std::vector<TerminalQuad>> quads(
        const terminal::ShownRow& row, int columns, const TerminalLook& look);
    TerminalAtlas& atlas() { return m_atlas; }

    /// Only the character at that position, as under a cursor.
    QImage underCursor(
        const terminal::ShownRow& row, int column, const TerminalLook& look, terminal::Rgb ink, terminal::Rgb ground);
    /// A preedit text, underlined.
    QImage preedit(const QString& text, const TerminalLook& look);

private:
    struct Ink {
        terminal::Rgb text;
        terminal::Rgb ground;
        bool hasGround; ///< other than the default one
    };

    void useLook(const TerminalLook& look);
    Ink inkOf(const terminal::Style& style, const TerminalLook& look);
    template <typename Canvas> void draw(Canvas& canvas, const terminal::ShownRow& row, const TerminalLook& look);
    template <typename Canvas>
    void drawLines(Canvas& canvas, const terminal::Style& style, const Ink& ink, int left, const TerminalLook& look);
    const TerminalGlyph& glyphOf(const terminal::ShownRow& row, terminal::Cell cell, const terminal::Style& style);

    TerminalGlyphs m_glyphs;
    TerminalAtlas m_atlas;
    TerminalLook m_readableFor; ///< the input of `m_readable`
    std::array<terminal::Rgb, 16> m_readable {};
};

}
