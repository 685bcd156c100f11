#pragma once

#include "Terminal/Core/Snapshot.h"
#include "UI/Terminals/TerminalGlyphs.h"

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

/// Draws terminal rows into images, in device pixels.
class TerminalPainter {
public:
    TerminalPainter(const QString& family, int pixelSize)
        : m_glyphs(family, pixelSize)
    {
    }

    QSize cell() const { return { m_glyphs.cellWidth(), m_glyphs.cellHeight() }; }
    int lineWidth() const { return m_glyphs.lineWidth(); }

    QImage row(const terminal::ShownRow& row, int columns, const TerminalLook& look);
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

    Ink inkOf(const terminal::Style& style, const TerminalLook& look);
    void drawText(QImage& image, const terminal::ShownRow& row, const TerminalLook& look);
    void drawGlyph(QImage& image, const TerminalGlyph& glyph, int left, terminal::Rgb ink);
    void drawLines(
        QImage& image, const terminal::Style& style, const Ink& ink, int left, int width, const TerminalLook&);
    const TerminalGlyph& glyphOf(const terminal::ShownRow& row, terminal::Cell cell, const terminal::Style& style);

    TerminalGlyphs m_glyphs;
    TerminalLook m_readableFor; ///< the input of `m_readable`
    std::array<terminal::Rgb, 16> m_readable {};
};

}
