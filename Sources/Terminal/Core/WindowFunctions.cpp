#include "Terminal/Core/Functions.h"

namespace corvane::terminal {

namespace {

void reportTitle(Emulator& t, char kind, const std::string& text)
{
    if (t.config.allowTitleReport)
        t.reply(concat(t.c1Text(']'), kind, t.titleCoding.queryHex ? hexOfBytes(text) : text, t.c1Text('\\')));
}

void resizeTo(Emulator& t, int columns, int rows)
{
    Size wanted = t.size;
    wanted.columns = columns;
    wanted.rows = rows;
    t.resize(wanted.clamped());
    t.out().resizeRequest(t.columns(), t.rows());
}

void pushTitles(Emulator& t)
{
    if (t.titleStack.size() == Emulator::maxTitleStack)
        t.titleStack.erase(t.titleStack.begin());
    t.titleStack.push_back({ t.title, t.icon });
}

void popTitles(Emulator& t, int which)
{
    if (t.titleStack.empty())
        return;
    const Emulator::Titles titles = std::move(t.titleStack.back());
    t.titleStack.pop_back();
    if (which != 1)
        t.setTitle(titles.title);
    if (which != 2)
        t.setIcon(titles.icon);
}

void switchTitleModes(Emulator& t, const Sequence& s, bool on)
{
    const auto set = [&](int mode) {
        if (mode == 0)
            t.titleCoding.setHex = on;
        else if (mode == 1)
            t.titleCoding.queryHex = on;
    };
    if (s.params.count() == 0)
        t.titleCoding = {};
    for (int i = 0; i < s.params.count(); ++i)
        set(s.params.at(i));
}

}

void windowOperation(Emulator& t, const Sequence& s)
{
    const int operation = s.params.at(0);
    const int first = s.params.at(1, -1);
    const int second = s.params.at(2, -1);
    const Size& size = t.size;
    switch (operation) {
    case 14:
        return t.replyCsi("4;", size.rows * size.cellHeight, ';', size.columns * size.cellWidth, 't');
    case 16:
        return t.replyCsi("6;", size.cellHeight, ';', size.cellWidth, 't');
    case 18:
        return t.replyCsi("8;", size.rows, ';', size.columns, 't');
    case 22:
        return pushTitles(t);
    case 23:
        return popTitles(t, first);
    case 20:
        return reportTitle(t, 'L', t.icon);
    case 21:
        return reportTitle(t, 'l', t.title);
    default:
        break;
    }
    if (!t.config.allowWindowOps)
        return;
    switch (operation) {
    case 4:
        return resizeTo(
            t, second > 0 ? second / size.cellWidth : size.columns, first > 0 ? first / size.cellHeight : size.rows);
    case 8:
        return resizeTo(t, second > 0 ? second : size.columns, first > 0 ? first : size.rows);
    case 11:
        return t.replyCsi("1t");
    case 13:
        return t.replyCsi("3;0;0t");
    case 15:
        return t.replyCsi("5;", size.rows * size.cellHeight, ';', size.columns * size.cellWidth, 't');
    case 19:
        return t.replyCsi("9;", size.rows, ';', size.columns, 't');
    default:
        if (operation >= 24)
            return resizeTo(t, size.columns, operation);
        t.out().windowRequest(operation, first, second);
    }
}

void columnsPerPage(Emulator& t, const Sequence& s)
{
    const int columns = s.params.at(0, 80);
    if (t.config.allowWindowOps && (columns == 0 || columns == 80 || columns == 132))
        resizeTo(t, columns == 132 ? 132 : 80, t.rows());
}

void linesPerScreen(Emulator& t, const Sequence& s)
{
    if (t.config.allowWindowOps && s.params.at(0) > 0)
        resizeTo(t, t.columns(), s.params.at(0));
}

void titleModes(Emulator& t, const Sequence& s)
{
    switchTitleModes(t, s, true);
}

void titleModesReset(Emulator& t, const Sequence& s)
{
    switchTitleModes(t, s, false);
}

void pushColors(Emulator& t, const Sequence& s)
{
    Palette& palette = t.palette;
    const size_t place = s.params.at(0) > 0 ? size_t(s.params.at(0) - 1) : size_t(palette.stackTop);
    if (place >= Palette::maxStack)
        return;
    if (palette.stack.size() <= place)
        palette.stack.resize(place + 1, palette.initial);
    palette.stack[place] = palette.current;
    palette.stackTop = int(place + 1);
}

void popColors(Emulator& t, const Sequence& s)
{
    Palette& palette = t.palette;
    const int place = s.params.at(0) > 0 ? s.params.at(0) - 1 : palette.stackTop - 1;
    if (place < 0 || size_t(place) >= palette.stack.size())
        return;
    palette.current = palette.stack[size_t(place)];
    palette.stackTop = place;
    t.out().paletteChanged();
    t.touchAll();
}

void reportColors(Emulator& t, const Sequence&)
{
    t.replyCsi(t.palette.stackTop, ';', t.palette.stack.size(), "#Q");
}

/// XTSMGRAPHICS for Sixel and colour registers: read, reset, set, read the maximum.
void graphicsAttributes(Emulator& t, const Sequence& s)
{
    constexpr int colorRegisters = 1024;
    constexpr int maxSide = 4096;
    const int item = s.params.at(0);
    const int action = s.params.at(1);
    if (action < 1 || action > 4 || item < 1 || item > 2)
        return t.replyCsi('?', item, ';', item < 1 || item > 2 ? 1 : 2, ";0S");
    if (item == 1)
        return t.replyCsi("?1;0;", colorRegisters, 'S');
    if (action == 4)
        return t.replyCsi("?2;0;", maxSide, ';', maxSide, 'S');
    const int width = std::min(t.columns() * t.size.cellWidth, maxSide);
    const int height = std::min(t.rows() * t.size.cellHeight, maxSide);
    t.replyCsi("?2;0;", width, ';', height, 'S');
}

void keyModifierOptions(Emulator& t, const Sequence& s)
{
    if (s.params.count() == 0 || s.params.at(0) == 4)
        t.modifyOtherKeys = std::min(s.params.at(1), 3);
}

void keyModifierDisable(Emulator& t, const Sequence& s)
{
    if (s.params.at(0, 4) == 4)
        t.modifyOtherKeys = 0;
}

void keyModifierQuery(Emulator& t, const Sequence& s)
{
    const int resource = s.params.at(0);
    if (resource == 4)
        t.replyCsi(">4;", t.modifyOtherKeys, 'm');
}

void keyboardQuery(Emulator& t, const Sequence&)
{
    t.replyCsi('?', t.screen->keyboard.current, 'u');
}

void keyboardSet(Emulator& t, const Sequence& s)
{
    constexpr int known = 31;
    int& current = t.screen->keyboard.current;
    const int flags = s.params.at(0) & known;
    const int mode = s.params.at(1, 1);
    if (mode == 1)
        current = flags;
    else if (mode == 2)
        current |= flags;
    else if (mode == 3)
        current &= ~flags;
}

void keyboardPush(Emulator& t, const Sequence& s)
{
    KeyboardFlags& keyboard = t.screen->keyboard;
    if (keyboard.stack.size() == KeyboardFlags::maxDepth)
        keyboard.stack.erase(keyboard.stack.begin());
    keyboard.stack.push_back(keyboard.current);
    keyboard.current = s.params.at(0) & 31;
}

void keyboardPop(Emulator& t, const Sequence& s)
{
    KeyboardFlags& keyboard = t.screen->keyboard;
    for (int count = s.params.amount(0); count > 0; --count) {
        if (keyboard.stack.empty()) {
            keyboard.current = 0;
            return;
        }
        keyboard.current = keyboard.stack.back();
        keyboard.stack.pop_back();
    }
}

}
