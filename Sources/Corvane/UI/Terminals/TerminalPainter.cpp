#include "UI/Terminals/TerminalPainter.h"

#include <QPainter>
#include <cmath>

namespace corvane {

using namespace terminal;

namespace {

constexpr uint32_t opaque = 0xff000000;

double luminance(Rgb color)
{
    const auto linear = [](uint32_t channel) {
        const double part = channel / 255.0;
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color >> 16 & 0xff) + 0.7152 * linear(color >> 8 & 0xff) + 0.0722 * linear(color & 0xff);
}

/// `share` of 256 parts of the second colour.
Rgb mixed(Rgb one, Rgb other, uint32_t share)
{
    Rgb result = 0;
    for (const int shift : { 16, 8, 0 })
        result |= ((one >> shift & 0xff) * (256 - share) + (other >> shift & 0xff) * share) / 256 << shift;
    return result;
}

/// Both pixels weighted, two channels at a time; `alpha` of 255 parts is the first one's.
uint32_t weighted(uint32_t one, uint32_t alpha, uint32_t other, uint32_t rest)
{
    const auto divided = [](uint32_t pair) {
        return (pair + (pair >> 8 & 0xff00ff) + 0x800080) >> 8 & 0xff00ff;
    };
    const uint32_t even = (one & 0xff00ff) * alpha + (other & 0xff00ff) * rest;
    const uint32_t odd = (one >> 8 & 0xff00ff) * alpha + (other >> 8 & 0xff00ff) * rest;
    return divided(odd) << 8 | divided(even);
}

/// Draws into a picture.
class PictureCanvas {
public:
    explicit PictureCanvas(QImage& image)
        : m_pixels(reinterpret_cast<uint32_t*>(image.bits()))
        , m_stride(image.bytesPerLine() / 4)
        , m_size(image.size())
    {
    }

    int width() const { return m_size.width(); }

    void fill(QRect area, Rgb color)
    {
        uint32_t* line = m_pixels + area.y() * m_stride + area.x();
        for (int y = 0; y < area.height(); ++y, line += m_stride)
            std::fill_n(line, area.width(), opaque | color);
    }

    void glyph(const TerminalGlyph& glyph, int left, Rgb ink)
    {
        const int begin = std::max(0, left - glyph.margin);
        const int end = std::min(width(), left - glyph.margin + glyph.width);
        const int skipped = begin - (left - glyph.margin);
        if (glyph.width == 0)
            return;
        uint32_t* line = m_pixels;
        for (int y = 0; y < m_size.height(); ++y, line += m_stride) {
            if (glyph.mask.empty()) {
                const auto* source = reinterpret_cast<const uint32_t*>(glyph.picture.constScanLine(y)) + skipped;
                for (int x = begin; x < end; ++x, ++source)
                    line[x] = *source + weighted(0, 0, line[x], 255 - (*source >> 24));
                continue;
            }
            const uint8_t* source = glyph.mask.data() + size_t(y) * size_t(glyph.width) + size_t(skipped);
            for (int x = begin; x < end; ++x, ++source) {
                if (*source)
                    line[x] = weighted(opaque | ink, *source, line[x], 255u - *source);
            }
        }
    }

private:
    uint32_t* m_pixels;
    qsizetype m_stride;
    QSize m_size;
};

/// Collects what a picture would show, as quads.
class QuadCanvas {
public:
    QuadCanvas(TerminalAtlas& atlas, QSize size)
        : m_atlas(atlas)
        , m_size(size)
    {
        m_quads.reserve(size_t(size.width() / std::max(1, size.height() / 4)));
    }

    int width() const { return m_size.width(); }
    void fill(QRect area, Rgb color) { m_quads.push_back({ area, TerminalAtlas::white, opaque | color }); }
    void glyph(const TerminalGlyph& glyph, int left, Rgb ink)
    {
        if (glyph.width == 0)
            return;
        const auto place = m_atlas.place(glyph);
        if (!place) {
            m_isWhole = false;
            return;
        }
        const QRect whole(left - glyph.margin, 0, glyph.width, m_size.height());
        const QRect area = whole & QRect(QPoint(), m_size);
        m_quads.push_back({ area, { *place + area.topLeft() - whole.topLeft(), area.size() },
            opaque | (glyph.mask.empty() ? 0xffffff : ink) });
    }

    std::optional<std::vector<TerminalQuad>> take()
    {
        return m_isWhole ? std::optional(std::move(m_quads)) : std::nullopt;
    }

private:
    TerminalAtlas& m_atlas;
    QSize m_size;
    std::vector<TerminalQuad> m_quads;
    bool m_isWhole = true;
};

TerminalGlyphs::Face faceOf(const Style& style)
{
    return TerminalGlyphs::Face(
        (style.has(Style::Bold) ? TerminalGlyphs::Bold : 0) | (style.has(Style::Italic) ? TerminalGlyphs::Italic : 0));
}

}

double contrastOf(Rgb one, Rgb other)
{
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

TerminalLook TerminalLook::of(const Snapshot& snapshot)
{
    const bool hasImageBelow
        = std::ranges::any_of(snapshot.placements, [](const PlacementView& view) { return view.z < 0; });
    return { snapshot.palette, snapshot.isReversed, hasImageBelow };
}

Rgb TerminalLook::text() const
{
    return palette.dynamic[size_t(isReversed ? DynamicColor::Background : DynamicColor::Foreground)];
}

Rgb TerminalLook::ground() const
{
    return palette.dynamic[size_t(isReversed ? DynamicColor::Foreground : DynamicColor::Background)];
}

Rgb readableOn(Rgb ground, Rgb wanted)
{
    constexpr double least = 4.5;
    constexpr Rgb white = 0xffffff;
    const Rgb end = contrastOf(ground, white) > contrastOf(ground, 0) ? white : 0;
    Rgb ink = wanted;
    for (uint32_t share = 8; contrastOf(ink, ground) < least && share <= 256; share += 8)
        ink = mixed(wanted, end, share);
    return ink;
}

TerminalPainter::Ink TerminalPainter::inkOf(const Style& style, const TerminalLook& look)
{
    const auto colorOf = [&look](Color color, Rgb usual) {
        switch (color.kind()) {
        case Color::Kind::Indexed:
            return look.palette.indexed[color.index()];
        case Color::Kind::Rgb:
            return Rgb(color.rgbValue());
        case Color::Kind::Default:
            break;
        }
        return usual;
    };
    const bool hasGround = style.background.kind() != Color::Kind::Default || style.has(Style::Reverse);
    Ink ink { colorOf(style.foreground, look.text()), colorOf(style.background, look.ground()), hasGround };
    // On the default background, the 16 colours must be readable.
    if (!hasGround && style.foreground.kind() == Color::Kind::Indexed && style.foreground.index() < 16)
        ink.text = m_readable[style.foreground.index()];
    if (style.has(Style::Reverse))
        std::swap(ink.text, ink.ground);
    if (style.has(Style::Faint))
        ink.text = mixed(ink.text, ink.ground, 110);
    return ink;
}

void TerminalPainter::useLook(const TerminalLook& look)
{
    if (m_readableFor == look)
        return;
    m_readableFor = look;
    for (size_t i = 0; i < m_readable.size(); ++i)
        m_readable[i] = readableOn(look.ground(), look.palette.indexed[i]);
}

std::optional<std::vector<TerminalQuad>> TerminalPainter::quads(
    const ShownRow& row, int columns, const TerminalLook& look)
{
    if (row.size != LineSize::Single)
        return {};
    useLook(look);
    QuadCanvas canvas(m_atlas, { columns * m_glyphs.cellWidth(), m_glyphs.cellHeight() });
    draw(canvas, row, look);
    return canvas.take();
}

QImage TerminalPainter::row(const ShownRow& row, int columns, const TerminalLook& look)
{
    useLook(look);
    const int width = columns * m_glyphs.cellWidth();
    const int height = m_glyphs.cellHeight();
    const auto format = look.isTransparent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    const bool isDouble = row.size != LineSize::Single;
    QImage image(isDouble ? (columns + 1) / 2 * m_glyphs.cellWidth() : width, height, format);
    image.fill(look.isTransparent ? 0 : opaque | look.ground());
    PictureCanvas canvas(image);
    draw(canvas, row, look);
    if (!isDouble)
        return image;
    const int top = row.size == LineSize::Bottom ? height / 2 : 0;
    const QRect part(0, top, image.width(), row.size == LineSize::Wide ? height : height / 2);
    return image.copy(part)
        .scaled(image.width() * 2, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .copy(0, 0, width, height)
        .convertToFormat(format);
}

const TerminalGlyph& TerminalPainter::glyphOf(const ShownRow& row, Cell cell, const Style& style)
{
    const int cells = std::max(1, cell.width());
    if (cell.isCluster())
        return m_glyphs.cluster(row.clusters[cell.content()], cells, faceOf(style));
    return m_glyphs.glyph(cell.content(), cells, faceOf(style));
}

template <typename Canvas> void TerminalPainter::draw(Canvas& canvas, const ShownRow& row, const TerminalLook& look)
{
    std::vector<Ink> inks;
    inks.reserve(row.styles.size());
    for (const Style& style : row.styles)
        inks.push_back(inkOf(style, look));
    const int cellWidth = m_glyphs.cellWidth();
    const int count = std::min(int(row.cells.size()), canvas.width() / cellWidth);

    // All backgrounds first, since glyphs may exceed their cells.
    for (int from = 0; from < count;) {
        int to = from + 1;
        while (to < count && row.cells[size_t(to)].style() == row.cells[size_t(from)].style())
            ++to;
        const Ink& ink = inks[row.cells[size_t(from)].style()];
        if (ink.hasGround)
            canvas.fill({ from * cellWidth, 0, (to - from) * cellWidth, m_glyphs.cellHeight() }, ink.ground);
        from = to;
    }
    for (int column = 0; column < count; ++column) {
        const Cell cell = row.cells[size_t(column)];
        const Style& style = row.styleOf(cell);
        const Ink& ink = inks[cell.style()];
        if (cell.hasText() && cell.width() > 0 && !style.has(Style::Conceal))
            canvas.glyph(glyphOf(row, cell, style), column * cellWidth, ink.text);
        const bool hasLines
            = style.underline != Underline::None || style.has(Style::Strike) || style.has(Style::Overline);
        if (hasLines)
            drawLines(canvas, style, ink, column * cellWidth, look);
    }
}

template <typename Canvas>
void TerminalPainter::drawLines(Canvas& canvas, const Style& style, const Ink& ink, int left, const TerminalLook& look)
{
    const int width = m_glyphs.cellWidth();
    const int height = m_glyphs.cellHeight();
    const int thick = m_glyphs.lineWidth();
    const int low = std::min(m_glyphs.ascent() + thick, height - thick);
    const auto line = [&](int y, Rgb color) {
        canvas.fill({ left, y, width, thick }, color);
    };
    if (style.has(Style::Strike))
        line(m_glyphs.ascent() * 2 / 3, ink.text);
    if (style.has(Style::Overline))
        line(0, ink.text);
    Rgb color = ink.text;
    if (style.underlineColor.kind() == Color::Kind::Rgb)
        color = style.underlineColor.rgbValue();
    else if (style.underlineColor.kind() == Color::Kind::Indexed)
        color = look.palette.indexed[style.underlineColor.index()];
    switch (style.underline) {
    case Underline::None:
        break;
    case Underline::Single:
        line(low, color);
        break;
    case Underline::Double:
        line(height - thick, color);
        line(std::max(0, height - 3 * thick), color);
        break;
    case Underline::Curly:
        canvas.glyph(m_glyphs.wave(), left, color);
        break;
    case Underline::Dotted:
    case Underline::Dashed: {
        const int dash = style.underline == Underline::Dotted ? thick : std::max(2, width / 2);
        for (int x = left - left % (2 * dash); x < left + width; x += 2 * dash) {
            const int from = std::max(x, left);
            if (const int to = std::min(x + dash, left + width); to > from)
                canvas.fill({ from, low, to - from, thick }, color);
        }
        break;
    }
    }
}

QImage TerminalPainter::underCursor(const ShownRow& row, int column, const TerminalLook& look, Rgb ink, Rgb ground)
{
    const Cell cell = column < int(row.cells.size()) ? row.cells[size_t(column)] : Cell();
    const int cells = cell.part() == Cell::Part::WideHead ? 2 : 1;
    QImage image(cells * m_glyphs.cellWidth(), m_glyphs.cellHeight(), QImage::Format_RGB32);
    image.fill(opaque | ground);
    if (cell.hasText() && !row.styleOf(cell).has(Style::Conceal))
        PictureCanvas(image).glyph(glyphOf(row, cell, row.styleOf(cell)), 0, ink);
    if (row.size == LineSize::Single || look.isTransparent)
        return image;
    return image.scaled(image.width() * 2, image.height());
}

QImage TerminalPainter::preedit(const QString& text, const TerminalLook& look)
{
    const QFontMetrics metrics(m_glyphs.font());
    QImage image(std::max(1, metrics.horizontalAdvance(text)), m_glyphs.cellHeight(), QImage::Format_RGB32);
    image.fill(opaque | look.ground());
    QPainter painter(&image);
    painter.setFont(m_glyphs.font());
    painter.setPen(QColor(QRgb(opaque | look.text())));
    painter.drawText(0, m_glyphs.ascent(), text);
    painter.fillRect(
        0, image.height() - m_glyphs.lineWidth(), image.width(), m_glyphs.lineWidth(), painter.pen().color());
    return image;
}

}
