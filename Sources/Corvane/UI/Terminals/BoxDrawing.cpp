#include "UI/Terminals/BoxDrawing.h"

#include <QPainterPath>

namespace corvane {

namespace {

/// The arms of U+2500 to U+257F: left, right, up, down; 0 none, 1 light, 2 heavy, 3 double. Dashes, arcs and diagonals
/// are all zero or said elsewhere.
constexpr const char* arms[128] = {
    "1100",
    "2200",
    "0011",
    "0022",
    "1100",
    "2200",
    "0011",
    "0022",
    "1100",
    "2200",
    "0011",
    "0022",
    "0101",
    "0201",
    "0102",
    "0202",
    "1001",
    "2001",
    "1002",
    "2002",
    "0110",
    "0210",
    "0120",
    "0220",
    "1010",
    "2010",
    "1020",
    "2020",
    "0111",
    "0211",
    "0121",
    "0112",
    "0122",
    "0221",
    "0212",
    "0222",
    "1011",
    "2011",
    "1021",
    "1012",
    "1022",
    "2021",
    "2012",
    "2022",
    "1101",
    "2101",
    "1201",
    "2201",
    "1102",
    "2102",
    "1202",
    "2202",
    "1110",
    "2110",
    "1210",
    "2210",
    "1120",
    "2120",
    "1220",
    "2220",
    "1111",
    "2111",
    "1211",
    "2211",
    "1121",
    "1112",
    "1122",
    "2121",
    "1221",
    "2112",
    "1212",
    "2221",
    "2212",
    "2122",
    "1222",
    "2222",
    "1100",
    "2200",
    "0011",
    "0022",
    "3300",
    "0033",
    "0301",
    "0103",
    "0303",
    "3001",
    "1003",
    "3003",
    "0310",
    "0130",
    "0330",
    "3010",
    "1030",
    "3030",
    "0311",
    "0133",
    "0333",
    "3011",
    "1033",
    "3033",
    "3301",
    "1103",
    "3303",
    "3310",
    "1130",
    "3330",
    "3311",
    "1133",
    "3333",
    "0000",
    "0000",
    "0000",
    "0000",
    "0000",
    "0000",
    "0000",
    "1000",
    "0010",
    "0100",
    "0001",
    "2000",
    "0020",
    "0200",
    "0002",
    "1200",
    "0012",
    "2100",
    "0021",
};

int dashesOf(char32_t character)
{
    if (character >= 0x2504 && character <= 0x2507)
        return 3;
    if (character >= 0x2508 && character <= 0x250b)
        return 4;
    return character >= 0x254c && character <= 0x254f ? 2 : 0;
}

class LinePainter {
public:
    LinePainter(QPainter& painter, QSize cell)
        : m_painter(painter)
        , m_width(cell.width())
        , m_height(cell.height())
        , m_light(std::max(1, (cell.width() + 4) / 9))
        , m_middleX((cell.width() - m_light) / 2)
        , m_middleY((cell.height() - m_light) / 2)
    {
    }

    void lines(const char* arm, int dashes)
    {
        const int left = arm[0] - '0';
        const int right = arm[1] - '0';
        const int up = arm[2] - '0';
        const int down = arm[3] - '0';
        if (dashes) {
            dashed(left ? left : up, left != 0, dashes);
            return;
        }
        horizontal(left, right, up, down);
        vertical(up, down, left, right);
    }

    void arc(char32_t character)
    {
        const bool toRight = character == 0x256d || character == 0x2570;
        const bool toBottom = character == 0x256d || character == 0x256e;
        const double x = m_middleX + m_light / 2.0;
        const double y = m_middleY + m_light / 2.0;
        const double radius = std::min(m_width, m_height) / 2.0;
        const double stepX = toRight ? radius : -radius;
        const double stepY = toBottom ? radius : -radius;
        QPainterPath path(QPointF(x, toBottom ? m_height : 0));
        path.lineTo(x, y + stepY);
        path.quadTo(x, y, x + stepX, y);
        path.lineTo(toRight ? m_width : 0, y);
        stroke(path);
    }

    void diagonals(bool rising, bool falling)
    {
        QPainterPath path;
        if (rising) {
            path.moveTo(0, m_height);
            path.lineTo(m_width, 0);
        }
        if (falling) {
            path.moveTo(0, 0);
            path.lineTo(m_width, m_height);
        }
        stroke(path);
    }

private:
    void fill(int x, int y, int width, int height) { m_painter.fillRect(x, y, width, height, m_painter.pen().color()); }
    int thickness(int weight) const { return weight == 2 ? 2 * m_light : m_light; }

    void stroke(const QPainterPath& path)
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.strokePath(path, QPen(m_painter.pen().color(), m_light));
    }

    /// A double line is two lines, each one thickness away from the centre.
    void horizontal(int left, int right, int up, int down)
    {
        const int cross = std::max(up, down);
        const int joint = cross == 3 ? m_light : cross == 2 ? m_light / 2 : 0;
        for (const int weight : { 1, 2, 3 }) {
            for (const int side : { 0, 1 }) {
                if ((side ? right : left) != weight)
                    continue;
                const int from = side ? m_middleX - joint : 0;
                const int to = side ? m_width : m_middleX + m_light + joint;
                if (weight != 3) {
                    const int thick = thickness(weight);
                    fill(from, m_middleY - (thick - m_light) / 2, to - from, thick);
                    continue;
                }
                // In corners and junctions of double lines, each line ends at its counterpart.
                for (const int rail : { -1, 1 }) {
                    const bool opens = (rail < 0 ? up : down) == 3;
                    const int inner
                        = opens ? m_middleX + (side ? m_light : -m_light) : m_middleX - (side ? joint : -joint);
                    const int begin = side ? inner : 0;
                    const int end = side ? m_width : inner + m_light;
                    fill(begin, m_middleY + rail * m_light, end - begin, m_light);
                }
            }
        }
    }

    void vertical(int up, int down, int left, int right)
    {
        const int cross = std::max(left, right);
        const int joint = cross == 3 ? m_light : cross == 2 ? m_light / 2 : 0;
        for (const int weight : { 1, 2, 3 }) {
            for (const int side : { 0, 1 }) {
                if ((side ? down : up) != weight)
                    continue;
                const int from = side ? m_middleY - joint : 0;
                const int to = side ? m_height : m_middleY + m_light + joint;
                if (weight != 3) {
                    const int thick = thickness(weight);
                    fill(m_middleX - (thick - m_light) / 2, from, thick, to - from);
                    continue;
                }
                for (const int rail : { -1, 1 }) {
                    const bool opens = (rail < 0 ? left : right) == 3;
                    const int inner
                        = opens ? m_middleY + (side ? m_light : -m_light) : m_middleY - (side ? joint : -joint);
                    const int begin = side ? inner : 0;
                    const int end = side ? m_height : inner + m_light;
                    fill(m_middleX + rail * m_light, begin, m_light, end - begin);
                }
            }
        }
    }

    void dashed(int weight, bool isHorizontal, int count)
    {
        const int length = isHorizontal ? m_width : m_height;
        const int thick = thickness(weight);
        for (int dash = 0; dash < count; ++dash) {
            const int from = length * dash / count;
            const int size = std::max(1, length * (dash + 1) / count - from - m_light);
            if (isHorizontal)
                fill(from + m_light / 2, m_middleY - (thick - m_light) / 2, size, thick);
            else
                fill(m_middleX - (thick - m_light) / 2, from + m_light / 2, thick, size);
        }
    }

    QPainter& m_painter;
    const int m_width;
    const int m_height;
    const int m_light;
    const int m_middleX;
    const int m_middleY;
};

/// U+2580 to U+259F.
void paintBlock(QPainter& painter, char32_t character, int width, int height)
{
    const QColor ink = painter.pen().color();
    const auto part = [&](double left, double top, double right, double bottom) {
        const int x = qRound(left * width);
        const int y = qRound(top * height);
        painter.fillRect(x, y, qRound(right * width) - x, qRound(bottom * height) - y, ink);
    };
    const int index = int(character - 0x2580);
    if (index == 0)
        return part(0, 0, 1, 0.5);
    if (index <= 8)
        return part(0, 1 - index / 8.0, 1, 1);
    if (index <= 15)
        return part(0, 0, (16 - index) / 8.0, 1);
    if (index == 16)
        return part(0.5, 0, 1, 1);
    if (index <= 19) {
        QColor shade = ink;
        shade.setAlphaF(float(index - 16) * 0.25f);
        return painter.fillRect(0, 0, width, height, shade);
    }
    if (index == 20)
        return part(0, 0, 1, 0.125);
    if (index == 21)
        return part(0.875, 0, 1, 1);
    // Quadrants: 1 upper left, 2 upper right, 4 lower left, 8 lower right
    constexpr int quadrants[] = { 4, 8, 1, 13, 9, 7, 11, 2, 6, 14 };
    for (int bit = 0; bit < 4; ++bit) {
        if (quadrants[index - 22] & 1 << bit)
            part(bit % 2 * 0.5, bit / 2 * 0.5, bit % 2 * 0.5 + 0.5, bit / 2 * 0.5 + 0.5);
    }
}

void paintBraille(QPainter& painter, int dots, int width, int height)
{
    const double size = std::max(1.0, std::min(width / 2.0, height / 4.0) * 0.6);
    painter.setRenderHint(QPainter::Antialiasing, size > 2);
    painter.setBrush(painter.pen().color());
    painter.setPen(Qt::NoPen);
    constexpr int columns[] = { 0, 0, 0, 1, 1, 1, 0, 1 };
    constexpr int rows[] = { 0, 1, 2, 0, 1, 2, 3, 3 };
    for (int dot = 0; dot < 8; ++dot) {
        if (dots & 1 << dot)
            painter.drawEllipse(
                QPointF(width * (0.25 + 0.5 * columns[dot]), height * (0.125 + 0.25 * rows[dot])), size / 2, size / 2);
    }
}

/// U+1FB00 to U+1FB3B: the two-by-three patterns, without those that exist as other blocks.
void paintSextant(QPainter& painter, int index, int width, int height)
{
    int pattern = index + 1;
    pattern += pattern >= 21 ? 1 : 0;
    pattern += pattern >= 42 ? 1 : 0;
    for (int bit = 0; bit < 6; ++bit) {
        if (!(pattern & 1 << bit))
            continue;
        const int x = bit % 2 ? width / 2 : 0;
        const int y = height * (bit / 2) / 3;
        painter.fillRect(
            x, y, bit % 2 ? width - width / 2 : width / 2, height * (bit / 2 + 1) / 3 - y, painter.pen().color());
    }
}

void paintPowerline(QPainter& painter, char32_t character, int width, int height)
{
    const bool toRight = character <= 0xe0b1;
    const double tip = toRight ? width : 0;
    const double base = width - tip;
    QPainterPath path(QPointF(base, 0));
    path.lineTo(tip, height / 2.0);
    path.lineTo(base, height);
    painter.setRenderHint(QPainter::Antialiasing);
    if (character % 2 == 0)
        painter.fillPath(path, painter.pen().color());
    else
        painter.strokePath(path, QPen(painter.pen().color(), std::max(1.0, width / 9.0)));
}

}

bool isBoxDrawing(char32_t character)
{
    return (character >= 0x2500 && character <= 0x259f) || (character >= 0x2800 && character <= 0x28ff)
        || (character >= 0xe0b0 && character <= 0xe0b3) || (character >= 0x1fb00 && character <= 0x1fb3b);
}

void paintBoxDrawing(QPainter& painter, char32_t character, QSize cell)
{
    const int width = cell.width();
    const int height = cell.height();
    LinePainter lines(painter, cell);
    if (character >= 0x1fb00)
        paintSextant(painter, int(character - 0x1fb00), width, height);
    else if (character >= 0xe0b0)
        paintPowerline(painter, character, width, height);
    else if (character >= 0x2800)
        paintBraille(painter, int(character - 0x2800), width, height);
    else if (character >= 0x2580)
        paintBlock(painter, character, width, height);
    else if (character >= 0x256d && character <= 0x2570)
        lines.arc(character);
    else if (character >= 0x2571 && character <= 0x2573)
        lines.diagonals(character != 0x2572, character != 0x2571);
    else
        lines.lines(arms[character - 0x2500], dashesOf(character));
}

}
