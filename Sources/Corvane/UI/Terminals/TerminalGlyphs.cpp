#include "UI/Terminals/TerminalGlyphs.h"

#include "Foundation/Literals.h"
#include "UI/Terminals/BoxDrawing.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <cmath>

namespace corvane {

namespace {

/// A sequence is one glyph only if all of it comes from one font.
bool isEmoji(std::u32string_view text)
{
    constexpr char32_t asPicture = 0xfe0f;
    return text[0] >= 0x1f000 || text.find(asPicture) != std::u32string_view::npos;
}

/// Draws it in white; the result becomes a mask if it has one colour.
TerminalGlyph glyphOf(const QImage& image, int margin)
{
    TerminalGlyph glyph;
    glyph.width = image.width();
    glyph.margin = margin;
    bool isEmpty = true;
    bool isColored = false;
    glyph.mask.resize(size_t(glyph.width) * size_t(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < glyph.width; ++x) {
            const int alpha = qAlpha(line[x]);
            isEmpty &= alpha == 0;
            isColored |= qRed(line[x]) != alpha || qBlue(line[x]) != alpha;
            glyph.mask[size_t(y * glyph.width + x)] = uint8_t(alpha);
        }
    }
    if (isEmpty)
        return {};
    if (isColored) {
        glyph.mask.clear();
        glyph.picture = image;
    }
    return glyph;
}

}

QString terminalFontFamily()
{
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (QFontInfo(fixed).fixedPitch())
        return QFontInfo(fixed).family();
    for (const QString& family : { u"DejaVu Sans Mono"_s, u"Noto Sans Mono"_s, u"Liberation Mono"_s }) {
        if (QFontDatabase::hasFamily(family))
            return family;
    }
    return u"monospace"_s;
}

TerminalGlyphs::TerminalGlyphs(const QString& family, int pixelSize)
{
    QStringList families { family };
    const QString emoji = u"Noto Color Emoji"_s;
    if (QFontDatabase::hasFamily(emoji))
        families.append(emoji);
    for (int face = 0; face < 4; ++face) {
        QFont& font = m_fonts[face];
        font.setFamilies(families);
        font.setPixelSize(pixelSize);
        font.setStyleHint(QFont::Monospace);
        font.setStyleStrategy(QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
        font.setBold(face & Bold);
        font.setItalic(face & Italic);
        font.setKerning(false);
    }
    m_emojiFont = m_fonts[0];
    m_emojiFont.setFamilies({ emoji, family });
    const QFontMetricsF metrics(m_fonts[0]);
    m_cellWidth = std::max(1, qRound(metrics.horizontalAdvance(u'M')));
    m_ascent = int(std::ceil(metrics.ascent()));
    m_cellHeight = std::max(1, m_ascent + int(std::ceil(metrics.descent())));
    m_lineWidth = std::max(1, qRound(pixelSize / 14.0));
}

const TerminalGlyph& TerminalGlyphs::glyph(char32_t character, int cells, Face face)
{
    if (character < plainCount && cells == 1) {
        std::unique_ptr<TerminalGlyph>& known = m_plain[face][character];
        if (!known)
            known = std::make_unique<TerminalGlyph>(draw({ &character, 1 }, cells, face));
        return *known;
    }
    return cluster({ &character, 1 }, cells, face);
}

const TerminalGlyph& TerminalGlyphs::cluster(std::u32string_view text, int cells, Face face)
{
    std::u32string key(1, char32_t(face * 4 + cells));
    key.append(text);
    const auto known = m_glyphs.find(key);
    if (known != m_glyphs.end())
        return known->second;
    if (m_glyphs.size() >= mostKept)
        m_glyphs.clear();
    return m_glyphs.emplace(std::move(key), draw(text, cells, face)).first->second;
}

TerminalGlyph TerminalGlyphs::draw(std::u32string_view text, int cells, Face face) const
{
    const bool isBox = text.size() == 1 && isBoxDrawing(text[0]);
    const int margin = isBox ? 0 : (m_cellWidth + 2) / 3;
    const int space = cells * m_cellWidth;
    QImage image(space + 2 * margin, m_cellHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    if (isBox) {
        paintBoxDrawing(painter, text[0], { space, m_cellHeight });
    } else {
        const QString string = QString::fromUcs4(text.data(), qsizetype(text.size()));
        const QFont& font = isEmoji(text) ? m_emojiFont : m_fonts[face];
        painter.setFont(font);
        // A fallback font's glyph may be too wide; it is scaled down instead of cut.
        const double advance = QFontMetricsF(font).horizontalAdvance(string);
        const double scale = advance > space + 0.5 ? space / advance : 1;
        const double slack = cells > 1 ? std::max(0.0, (space - advance * scale) / 2) : 0;
        painter.translate(margin + slack, m_ascent * (1 + scale) / 2);
        painter.scale(scale, scale);
        painter.drawText(QPointF(0, 0), string);
    }
    painter.end();
    return glyphOf(image, margin);
}

const TerminalGlyph& TerminalGlyphs::wave()
{
    if (m_wave)
        return *m_wave;
    QImage image(m_cellWidth, m_cellHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const double swing = std::max(1.0, (m_cellHeight - m_ascent) / 3.0);
    const double middle = m_cellHeight - swing - m_lineWidth / 2.0;
    QPolygonF wave;
    for (int x = -1; x <= m_cellWidth + 1; ++x) // beyond the edges, so that neighbours join
        wave.append(QPointF(x, middle + swing * std::sin(2 * M_PI * x / m_cellWidth)));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, m_lineWidth));
    painter.drawPolyline(wave);
    painter.end();
    return m_wave.emplace(glyphOf(image, 0));
}

}
