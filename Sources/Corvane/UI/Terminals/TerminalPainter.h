#pragma once

#include "Terminal/Core/Snapshot.h"
#include "UI/Terminals/TerminalGlyphs.h"

namespace corvane {

/// The colours that a picture is drawn in, made from a palette once.
struct TerminalLook {
    terminal::PaletteState palette {};
    bool isReversed = false;
    bool isTransparent = false; ///< the default ground is left out: something lies under it

    static TerminalLook of(const terminal::Snapshot& snapshot);
    friend bool operator==(const TerminalLook&, const TerminalLook&) = default;

    terminal::Rgb text() const;
    terminal::Rgb ground() const;
};

double contrastOf(terminal::Rgb one, terminal::Rgb other); ///< from 1 to 21

/// Ink that reads on the ground, 4.5 to 1: the wanted one, moved towards black or white as far as it takes.
terminal::Rgb readableOn(terminal::Rgb ground, terminal::Rgb wanted);

/// Draws rows of a terminal into pictures, in device pixels.
class TerminalPainter {
public:
    TerminalPainter(const QString& family, int pixelSize)
        : m_glyphs(family, pixelSize)
    {
    }

    QSize cell() const { return { m_glyphs.cellWidth(), m_glyphs.cellHeight() }; }
    int lineWidth() const { return m_glyphs.lineWidth(); }

    QImage row(const terminal::ShownRow& row, int columns, const TerminalLook& look);
    /// The character at that place alone, as a cursor over it shows it.
    QImage underCursor(
        const terminal::ShownRow& row, int column, const TerminalLook& look, terminal::Rgb ink, terminal::Rgb ground);
    /// A text that is being composed, underlined.
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
    TerminalLook m_readableFor; ///< what `m_readable` was made for
    std::array<terminal::Rgb, 16> m_readable {};
};

}
