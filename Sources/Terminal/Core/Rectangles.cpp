#include "Terminal/Core/Functions.h"
#include "Terminal/Core/Sgr.h"

namespace corvane::terminal {

namespace {

/// Calls `visit(cell)` for each cell of the rectangle, or of the text stream between its corners.
template <typename Visit> void eachCell(Emulator& t, const Rect& area, bool asRectangle, Visit visit)
{
    for (int index = area.top; index < area.bottom; ++index) {
        Row& row = t.row(index);
        const int from = asRectangle || index == area.top ? area.left : 0;
        const int to = asRectangle || index == area.bottom - 1 ? area.right : t.columns();
        row.touch(to);
        for (int column = from; column < to; ++column)
            visit(row.cells[column]);
        row.styled = true;
        t.touch(row);
    }
}

/// Changes the attributes of an area by the SGR codes that follow its coordinates.
void alterAttributes(Emulator& t, const Params& params, uint16_t (*alter)(uint16_t before, int code))
{
    // In a stream, the columns of the corners may be in any order; only the rows may not.
    const Rect area = t.attributesByRectangle ? rectangleOf(t, params, 0) : streamOf(t, params);
    StyleId from = 0;
    StyleId to = 0;
    bool known = false;
    eachCell(t, area, t.attributesByRectangle, [&](Cell& cell) {
        if (!known || cell.style() != from) {
            Style style = t.styles[cell.style()];
            constexpr uint16_t underlineBit = 1 << 15;
            uint16_t attributes = style.attributes;
            if (style.underline != Underline::None)
                attributes |= underlineBit;
            for (int i = 4; i < std::max(params.count(), 5); ++i)
                attributes = alter(attributes, params.at(i));
            style.underline = attributes & underlineBit
                ? (style.underline == Underline::None ? Underline::Single : style.underline)
                : Underline::None;
            style.attributes = attributes & ~underlineBit;
            from = cell.style();
            to = t.styles.intern(style);
            known = true;
        }
        cell = cell.withStyle(to);
    });
}

uint16_t attributeBit(int code)
{
    switch (code) {
    case 1:
        return Style::Bold;
    case 4:
        return 1 << 15;
    case 5:
        return Style::Blink;
    case 7:
        return Style::Reverse;
    case 8:
        return Style::Conceal;
    default:
        return 0;
    }
}

constexpr uint16_t allBits = Style::Bold | 1 << 15 | Style::Blink | Style::Reverse;

uint16_t changed(uint16_t before, int code)
{
    if (code == 0)
        return before & ~(allBits | Style::Conceal);
    if (code == 22)
        return before & ~attributeBit(1);
    if (code > 20 && code < 30)
        return before & ~attributeBit(code - 20);
    return before | attributeBit(code);
}

uint16_t reversed(uint16_t before, int code)
{
    return before ^ (code == 0 ? allBits : attributeBit(code));
}

/// The checksum of the area, computed as DEC terminals do unless XTCHECKSUM changes that.
class Checksum {
public:
    explicit Checksum(Emulator& terminal)
        : t(terminal)
        , m_extension(terminal.checksumExtension)
    {
    }

    unsigned of(const Rect& area)
    {
        for (int index = area.top; index < area.bottom; ++index) {
            for (int column = area.left; column < area.right; ++column)
                add(t.row(index).cells[column]);
            m_blanks = 0;
        }
        const unsigned sum = m_extension & CountBlanks ? m_all : m_trimmed;
        return (m_extension & Positive ? sum : 0x10000 - (sum & 0xffff)) & 0xffff;
    }

private:
    enum Extension { Positive = 1, NoAttributes = 2, CountBlanks = 4, SkipErased = 8, Wide = 16, EightBits = 32 };

    void add(Cell cell)
    {
        const bool drawn = cell.hasText();
        if ((m_extension & SkipErased && !drawn) || cell.part() == Cell::Part::WideTail)
            return;
        unsigned value = drawn ? character(cell) : ' ';
        const bool isBlank = value == ' ';
        if (!(m_extension & NoAttributes))
            value += attributes(t.styles[cell.style()]);
        m_all += value;
        // Blanks count only if something follows them in the row.
        m_blanks += value;
        if (m_first || !isBlank || cell.style() != 0) {
            m_trimmed += m_blanks;
            m_blanks = 0;
        }
        m_first = false;
    }

    unsigned character(Cell cell) const
    {
        unsigned value = cell.content();
        if (cell.isCluster()) {
            const std::u32string_view text = t.clusters[cell.content()];
            value = text[0];
            for (size_t i = 1; i < text.size() && m_extension & Wide; ++i)
                value += text[i];
        }
        if (m_extension & Wide)
            return value;
        return value & (m_extension & EightBits ? 0xff : value < 0x80 ? 0x7f : 0xff);
    }

    static unsigned attributes(const Style& style)
    {
        unsigned value = 0;
        value += style.has(Style::Protected) ? 0x04 : 0;
        value += style.has(Style::Conceal) ? 0x08 : 0;
        value += style.underline != Underline::None ? 0x10 : 0;
        value += style.has(Style::Reverse) ? 0x20 : 0;
        value += style.has(Style::Blink) ? 0x40 : 0;
        value += style.has(Style::Bold) ? 0x80 : 0;
        return value;
    }

    Emulator& t;
    int m_extension;
    bool m_first = true;
    unsigned m_all = 0;
    unsigned m_trimmed = 0;
    unsigned m_blanks = 0;
};

}

Rect rectangleOf(const Emulator& t, const Params& params, int first)
{
    const bool origin = t.modes.has(Mode::Origin);
    const Rect page = origin ? t.margins : Rect { 0, 0, t.rows(), t.columns() };
    const auto last = [&](int index, int most) {
        return params.at(index) == 0 ? most : params.at(index);
    };
    Rect area;
    area.top = page.top + params.amount(first) - 1;
    area.left = page.left + params.amount(first + 1) - 1;
    area.bottom = std::min(page.bottom, page.top + last(first + 2, page.bottom - page.top));
    area.right = std::min(page.right, page.left + last(first + 3, page.right - page.left));
    if (area.top >= area.bottom || area.left >= area.right)
        return {};
    return area;
}

Rect streamOf(const Emulator& t, const Params& params)
{
    const Rect page = t.modes.has(Mode::Origin) ? t.margins : Rect { 0, 0, t.rows(), t.columns() };
    const auto last = [&](int index, int most) {
        return params.at(index) == 0 ? most : params.at(index);
    };
    Rect area;
    area.top = page.top + params.amount(0) - 1;
    area.left = std::min(page.left + params.amount(1) - 1, page.right);
    area.bottom = std::min(page.bottom, page.top + last(2, page.bottom - page.top));
    area.right = std::min(page.right, page.left + last(3, page.right - page.left));
    if (area.top >= area.bottom || (area.top == area.bottom - 1 && area.left >= area.right))
        return {};
    return area;
}

void fillRectangle(Emulator& t, const Sequence& s)
{
    const int code = s.params.at(0, ' ');
    if (!((code >= 0x20 && code < 0x7f) || (code >= 0xa0 && code < 0x100)))
        return;
    const Rect area = rectangleOf(t, s.params, 1);
    const Charsets& sets = t.cursor.charsets;
    const char32_t point = code < 0x80 ? translate(sets.designated[sets.left], uint8_t(code)) : char32_t(code);
    const Cell cell = Cell::character(point, t.penStyle());
    for (int index = area.top; index < area.bottom; ++index) {
        Row& row = t.row(index);
        row.cutAround(area.left, area.right);
        row.fill(area.left, area.right, cell);
        t.touch(row);
    }
}

void eraseRectangle(Emulator& t, const Sequence& s)
{
    const Rect area = rectangleOf(t, s.params, 0);
    const bool guards = std::exchange(t.guardsUsed, false); // DECERA erases guarded cells, too
    for (int index = area.top; index < area.bottom; ++index)
        t.erase(index, area.left, area.right);
    t.guardsUsed = guards;
}

void selectiveEraseRectangle(Emulator& t, const Sequence& s)
{
    const Rect area = rectangleOf(t, s.params, 0);
    for (int index = area.top; index < area.bottom; ++index)
        t.erase(index, area.left, area.right, EraseKind::Selective);
}

void copyRectangle(Emulator& t, const Sequence& s)
{
    const Rect from = rectangleOf(t, s.params, 0);
    const Rect page = t.modes.has(Mode::Origin) ? t.margins : Rect { 0, 0, t.rows(), t.columns() };
    const int top = page.top + s.params.amount(5) - 1;
    const int left = page.left + s.params.amount(6) - 1;
    const int height = std::min(from.bottom - from.top, page.bottom - top);
    const int width = std::min(from.right - from.left, page.right - left);
    if (height <= 0 || width <= 0)
        return;
    const bool downwards = top <= from.top;
    for (int step = 0; step < height; ++step) {
        const int offset = downwards ? step : height - 1 - step;
        Row& source = t.row(from.top + offset);
        Row& target = t.row(top + offset);
        std::vector<Cell> cells(source.cells + from.left, source.cells + from.left + width);
        // A character cut in half by the edge is not copied.
        if (cells.front().part() == Cell::Part::WideTail)
            cells.front() = Cell::erased(cells.front().style());
        if (cells.back().part() == Cell::Part::WideHead)
            cells.back() = Cell::erased(cells.back().style());
        target.cutAround(left, left + width);
        std::copy(cells.begin(), cells.end(), target.cells + left);
        target.touch(left + width);
        target.styled |= source.styled;
        target.complex |= source.complex;
        t.touch(target);
    }
}

void changeAttributes(Emulator& t, const Sequence& s)
{
    alterAttributes(t, s.params, changed);
}

void reverseAttributes(Emulator& t, const Sequence& s)
{
    alterAttributes(t, s.params, reversed);
}

void attributeExtent(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) <= 2)
        t.attributesByRectangle = s.params.at(0) == 2;
}

void checksumExtension(Emulator& t, const Sequence& s)
{
    t.checksumExtension = s.params.at(0) & 63;
}

void checksumRectangle(Emulator& t, const Sequence& s)
{
    const Rect area = rectangleOf(t, s.params, 2);
    t.replyDcs(s.params.at(0), "!~", toHex(Checksum(t).of(area), 4, true));
}

}
