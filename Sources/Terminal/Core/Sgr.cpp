#include "Terminal/Core/Sgr.h"

#include "Terminal/Core/Functions.h"

namespace corvane::terminal {

namespace {

/// The colour of 38, 48 and 58. Leaves `index` at the last parameter used; in the colon form the caller skips the rest.
std::optional<Color> extendedColor(const Params& params, int& index)
{
    const int head = index;
    const bool colons = params.isSub(head + 1);
    const int kind = params.at(head + 1);
    const auto channel = [](int value) {
        return uint8_t(std::clamp(value, 0, 255));
    };
    if (kind == 5) {
        index = head + 2;
        if (params.at(index) > 255)
            return {};
        return Color::indexed(channel(params.at(index)));
    }
    if (kind != 2) {
        index = head + 1;
        return {};
    }
    // 38:2:space:r:g:b has one more than the forms without a colour space.
    int first = head + 2;
    if (colons && params.next(head) - head >= 6)
        ++first;
    index = first + 2;
    return Color::rgb(channel(params.at(first)), channel(params.at(first + 1)), channel(params.at(first + 2)));
}

void applyOne(Style& pen, const Params& params, int& index)
{
    const int code = params.at(index);
    switch (code) {
    case 0: {
        // SGR does not change protection and links.
        Style plain;
        plain.attributes = pen.attributes & (Style::Protected | Style::Guarded);
        plain.link = pen.link;
        pen = plain;
        return;
    }
    case 1:
        return pen.set(Style::Bold, true);
    case 2:
        return pen.set(Style::Faint, true);
    case 3:
        return pen.set(Style::Italic, true);
    case 4:
        pen.underline = params.isSub(index + 1) ? Underline(std::min(params.at(index + 1), 5)) : Underline::Single;
        return;
    case 5:
    case 6:
        return pen.set(Style::Blink, true);
    case 7:
        return pen.set(Style::Reverse, true);
    case 8:
        return pen.set(Style::Conceal, true);
    case 9:
        return pen.set(Style::Strike, true);
    case 21:
        pen.underline = Underline::Double;
        return;
    case 22:
        pen.set(Style::Bold, false);
        return pen.set(Style::Faint, false);
    case 23:
        return pen.set(Style::Italic, false);
    case 24:
        pen.underline = Underline::None;
        return;
    case 25:
        return pen.set(Style::Blink, false);
    case 27:
        return pen.set(Style::Reverse, false);
    case 28:
        return pen.set(Style::Conceal, false);
    case 29:
        return pen.set(Style::Strike, false);
    case 38:
    case 48:
    case 58: {
        const auto color = extendedColor(params, index);
        if (color)
            (code == 38 ? pen.foreground : code == 48 ? pen.background : pen.underlineColor) = *color;
        return;
    }
    case 39:
        pen.foreground = {};
        return;
    case 49:
        pen.background = {};
        return;
    case 53:
        return pen.set(Style::Overline, true);
    case 55:
        return pen.set(Style::Overline, false);
    case 59:
        pen.underlineColor = {};
        return;
    default:
        break;
    }
    if (code >= 30 && code <= 37)
        pen.foreground = Color::indexed(uint8_t(code - 30));
    else if (code >= 40 && code <= 47)
        pen.background = Color::indexed(uint8_t(code - 40));
    else if (code >= 90 && code <= 97)
        pen.foreground = Color::indexed(uint8_t(code - 90 + 8));
    else if (code >= 100 && code <= 107)
        pen.background = Color::indexed(uint8_t(code - 100 + 8));
}

std::string colorText(Color color, int base)
{
    switch (color.kind()) {
    case Color::Kind::Default:
        return {};
    case Color::Kind::Indexed:
        if (base != 58 && color.index() < 8)
            return concat(';', base - 8 + color.index());
        if (base != 58 && color.index() < 16)
            return concat(';', base + 52 + color.index() - 8);
        return concat(';', base, ":5:", int(color.index()));
    case Color::Kind::Rgb:
        break;
    }
    const uint32_t rgb = color.rgbValue();
    return concat(';', base, ":2::", rgb >> 16, ':', rgb >> 8 & 0xff, ':', rgb & 0xff);
}

}

void applySgr(Style& pen, const Params& params, int first)
{
    if (params.count() <= first) {
        int index = Params::max;
        applyOne(pen, params, index);
        return;
    }
    while (first < params.count()) {
        int index = first;
        applyOne(pen, params, index);
        first = params.next(index);
    }
}

std::string sgrText(const Style& style)
{
    constexpr struct {
        Style::Attribute attribute;
        std::string_view code;
    } attributes[] = {
        { Style::Bold, ";1" },
        { Style::Faint, ";2" },
        { Style::Italic, ";3" },
        { Style::Blink, ";5" },
        { Style::Reverse, ";7" },
        { Style::Conceal, ";8" },
        { Style::Strike, ";9" },
        { Style::Overline, ";53" },
    };
    std::string text = "0";
    for (const auto& entry : attributes) {
        if (style.has(entry.attribute))
            text += entry.code;
    }
    if (style.underline == Underline::Single)
        text += ";4";
    else if (style.underline == Underline::Double)
        text += ";21";
    else if (style.underline != Underline::None)
        text += concat(";4:", int(style.underline));
    return text + colorText(style.foreground, 38) + colorText(style.background, 48)
        + colorText(style.underlineColor, 58);
}

void selectGraphics(Emulator& t, const Sequence& s)
{
    const Style before = t.cursor.pen;
    applySgr(t.cursor.pen, s.params);
    t.penChanged |= t.cursor.pen != before;
}

void pushGraphics(Emulator& t, const Sequence&)
{
    if (t.penStack.size() < Emulator::maxTitleStack)
        t.penStack.push_back(t.cursor.pen);
}

void popGraphics(Emulator& t, const Sequence&)
{
    if (t.penStack.empty())
        return;
    t.cursor.pen = t.penStack.back();
    t.penStack.pop_back();
    t.penChanged = true;
}

/// The attributes shared by all cells of the rectangle.
void reportGraphics(Emulator& t, const Sequence& s)
{
    const Rect area = rectangleOf(t, s.params, 0);
    if (area.top >= area.bottom || area.left >= area.right)
        return;
    std::optional<Style> common;
    for (int row = area.top; row < area.bottom; ++row) {
        for (int column = area.left; column < area.right; ++column) {
            const Style& style = t.styles[t.row(row).cells[column].style()];
            if (!common) {
                common = style;
                continue;
            }
            common->attributes &= style.attributes;
            if (common->underline != style.underline)
                common->underline = Underline::None;
            if (common->foreground != style.foreground)
                common->foreground = {};
            if (common->background != style.background)
                common->background = {};
            if (common->underlineColor != style.underlineColor)
                common->underlineColor = {};
        }
    }
    t.replyCsi(sgrText(*common), 'm');
}

void selectProtection(Emulator& t, const Sequence& s)
{
    const int value = s.params.at(0);
    if (value > 2)
        return;
    t.cursor.pen.set(Style::Protected, value == 1);
    t.penChanged = true;
}

void startGuarded(Emulator& t, const Sequence&)
{
    t.cursor.pen.set(Style::Guarded, true);
    t.guardsUsed = t.penChanged = true;
}

void endGuarded(Emulator& t, const Sequence&)
{
    t.cursor.pen.set(Style::Guarded, false);
    t.penChanged = true;
}

}
