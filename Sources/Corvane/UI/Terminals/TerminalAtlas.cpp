#include "UI/Terminals/TerminalAtlas.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int pictureWidth = 1024;
constexpr int firstHeight = 256;
constexpr int mostHeight = 4096;

/// Unique among the images of all atlases.
uint64_t nextVersion()
{
    static uint64_t last = 0;
    return ++last;
}

}

TerminalAtlas::TerminalAtlas(int cellHeight)
    : m_cellHeight(cellHeight)
{
    clear();
}

void TerminalAtlas::clear()
{
    // In the format of textures, so that it need not be converted.
    m_picture = QImage(pictureWidth, std::max(firstHeight, m_cellHeight), QImage::Format_RGBA8888_Premultiplied);
    m_picture.fill(Qt::transparent);
    m_picture.setPixel(white.topLeft(), 0xffffffff);
    m_next = { white.right() + 1, 0 };
    m_isFull = false;
    ++m_round;
    m_version = nextVersion();
}

QPoint TerminalAtlas::nextPlace(int width)
{
    if (m_next.x() + width > pictureWidth)
        m_next = { 0, m_next.y() + m_cellHeight };
    if (m_next.y() + m_cellHeight > m_picture.height() && m_picture.height() < mostHeight)
        m_picture = m_picture.copy(0, 0, pictureWidth, m_picture.height() * 2);
    m_isFull = width > pictureWidth || m_next.y() + m_cellHeight > m_picture.height();
    return m_next;
}

std::optional<QPoint> TerminalAtlas::place(const TerminalGlyph& glyph)
{
    if (glyph.atlasRound == m_round)
        return glyph.atlasPlace;
    const QPoint place = m_isFull ? QPoint() : nextPlace(glyph.width);
    if (m_isFull)
        return {};
    for (int y = 0; y < m_cellHeight; ++y) {
        uchar* const line = m_picture.scanLine(place.y() + y) + qsizetype(place.x()) * 4;
        if (glyph.mask.empty()) {
            const QImage colors = glyph.picture.copy(0, y, glyph.width, 1).convertToFormat(m_picture.format());
            std::copy_n(colors.constScanLine(0), glyph.width * 4, line);
            continue;
        }
        for (int x = 0; x < glyph.width; ++x)
            std::fill_n(line + qsizetype(x) * 4, 4, glyph.mask[size_t(y) * size_t(glyph.width) + size_t(x)]);
    }
    m_next.rx() += glyph.width;
    m_version = nextVersion();
    glyph.atlasRound = m_round;
    glyph.atlasPlace = place;
    return place;
}

}
