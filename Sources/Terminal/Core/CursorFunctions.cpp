#include "Terminal/Core/Functions.h"

namespace corvane::terminal {

namespace {

/// Stops at the margin if the cursor is at or within it, otherwise at the edge of the page.
void moveRows(Emulator& t, int rows)
{
    int target = t.cursor.row + rows;
    if (rows < 0)
        target = std::max(target, t.cursor.row >= t.margins.top ? t.margins.top : 0);
    else
        target = std::min(target, (t.cursor.row < t.margins.bottom ? t.margins.bottom : t.rows()) - 1);
    t.moveTo(target, t.cursor.column);
}

void designate(Charsets& charsets, int slot, const Sequence& sequence, bool is96)
{
    const char inner = sequence.intermediateCount > 1 ? sequence.intermediates[1] : char(0);
    charsets.designated[slot] = charsetOf(inner, sequence.final, is96);
    charsets.finals[slot] = sequence.final;
    charsets.intermediates[slot] = inner;
    charsets.are96[slot] = is96;
}

}

void bell(Emulator& t, const Sequence&)
{
    t.out().bell();
}

void backspaceControl(Emulator& t, const Sequence&)
{
    t.backspace(1);
}

void tab(Emulator& t, const Sequence&)
{
    t.nextTab(1);
}

void lineFeedControl(Emulator& t, const Sequence&)
{
    t.lineFeed();
    if (t.modes.has(Mode::NewLine))
        t.carriageReturn();
}

void carriageReturnControl(Emulator& t, const Sequence&)
{
    t.carriageReturn();
}

void shiftOut(Emulator& t, const Sequence&)
{
    t.cursor.charsets.left = 1;
    t.updatePlain();
}

void shiftIn(Emulator& t, const Sequence&)
{
    t.cursor.charsets.left = 0;
    t.updatePlain();
}

void substitute(Emulator& t, const Sequence&)
{
    t.printCharacter(replacementCharacter);
}

void index(Emulator& t, const Sequence&)
{
    t.lineFeed();
}

void nextLine(Emulator& t, const Sequence&)
{
    t.lineFeed();
    t.carriageReturn();
}

void setTab(Emulator& t, const Sequence&)
{
    t.tabs[size_t(t.cursor.column)] = true;
}

void reverseIndex(Emulator& t, const Sequence&)
{
    t.reverseLineFeed();
}

void singleShift2(Emulator& t, const Sequence&)
{
    t.cursor.charsets.single = 2;
    t.updatePlain();
}

void singleShift3(Emulator& t, const Sequence&)
{
    t.cursor.charsets.single = 3;
    t.updatePlain();
}

void designateCharset(Emulator& t, const Sequence& s)
{
    constexpr std::string_view slots94 = "()*+";
    constexpr std::string_view slots96 = "-./";
    const char slot = s.intermediates[0];
    if (const size_t place = slots94.find(slot); place != std::string_view::npos)
        designate(t.cursor.charsets, int(place), s, false);
    else
        designate(t.cursor.charsets, int(slots96.find(slot)) + 1, s, true);
    t.updatePlain();
}

void lockingShift(Emulator& t, const Sequence& s)
{
    Charsets& charsets = t.cursor.charsets;
    switch (s.final) {
    case 'n':
        charsets.left = 2;
        break;
    case 'o':
        charsets.left = 3;
        break;
    case '~':
        charsets.right = 1;
        break;
    case '}':
        charsets.right = 2;
        break;
    default:
        charsets.right = 3;
    }
    t.updatePlain();
}

void saveCursorFunction(Emulator& t, const Sequence&)
{
    t.saveCursor();
}

void restoreCursorFunction(Emulator& t, const Sequence&)
{
    t.restoreCursor();
}

void cursorUp(Emulator& t, const Sequence& s)
{
    moveRows(t, -s.params.amount(0));
}

void cursorDown(Emulator& t, const Sequence& s)
{
    moveRows(t, s.params.amount(0));
}

void cursorForward(Emulator& t, const Sequence& s)
{
    const int last = t.textEnd(t.cursorRow()) - 1;
    t.moveTo(t.cursor.row, std::min(t.cursor.column + s.params.amount(0), last));
}

void cursorBackward(Emulator& t, const Sequence& s)
{
    t.backspace(s.params.amount(0));
}

void cursorNextLine(Emulator& t, const Sequence& s)
{
    moveRows(t, s.params.amount(0));
    t.carriageReturn();
}

void cursorPreviousLine(Emulator& t, const Sequence& s)
{
    moveRows(t, -s.params.amount(0));
    t.carriageReturn();
}

void cursorColumn(Emulator& t, const Sequence& s)
{
    t.moveToAddress(t.cursor.row - t.originRow(), s.params.amount(0) - 1);
}

void cursorPosition(Emulator& t, const Sequence& s)
{
    t.moveToAddress(s.params.amount(0) - 1, s.params.amount(1) - 1);
}

void cursorRowAbsolute(Emulator& t, const Sequence& s)
{
    t.moveToAddress(s.params.amount(0) - 1, t.cursor.column - t.originColumn());
}

void columnRelative(Emulator& t, const Sequence& s)
{
    t.moveToAddress(t.cursor.row - t.originRow(), t.cursor.column - t.originColumn() + s.params.amount(0));
}

void rowRelative(Emulator& t, const Sequence& s)
{
    t.moveToAddress(t.cursor.row - t.originRow() + s.params.amount(0), t.cursor.column - t.originColumn());
}

void forwardTabs(Emulator& t, const Sequence& s)
{
    t.nextTab(s.params.amount(0));
}

void backwardTabs(Emulator& t, const Sequence& s)
{
    const int left = t.modes.has(Mode::Origin) ? t.margins.left : 0;
    int column = t.cursor.column;
    for (int count = s.params.amount(0); count > 0 && column > left; --count) {
        --column;
        while (column > left && !t.tabs[size_t(column)])
            --column;
    }
    t.moveTo(t.cursor.row, column);
}

void clearTabs(Emulator& t, const Sequence& s)
{
    if (s.params.at(0) == 0)
        t.tabs[size_t(t.cursor.column)] = false;
    else if (s.params.at(0) == 3)
        t.tabs.assign(t.tabs.size(), false);
}

void setTabsEvery8(Emulator& t, const Sequence& s)
{
    if (s.params.at(0, 5) == 5)
        t.resetTabs();
}

void topBottomMargins(Emulator& t, const Sequence& s)
{
    const int top = s.params.amount(0);
    int bottom = s.params.at(1);
    if (bottom == 0 || bottom > t.rows())
        bottom = t.rows();
    if (top >= bottom)
        return;
    t.margins.top = top - 1;
    t.margins.bottom = bottom;
    t.moveToAddress(0, 0);
}

void leftRightMargins(Emulator& t, const Sequence& s)
{
    if (!t.modes.has(Mode::LeftRightMargins)) {
        if (s.params.count() == 0)
            t.saveCursor();
        return;
    }
    const int left = s.params.amount(0);
    int right = s.params.at(1);
    if (right == 0 || right > t.columns())
        right = t.columns();
    if (left >= right)
        return;
    t.makeRowsSingle();
    t.margins.left = left - 1;
    t.margins.right = right;
    t.moveToAddress(0, 0);
}

void cursorStyle(Emulator& t, const Sequence& s)
{
    const int style = s.params.at(0);
    if (style > 6)
        return;
    t.cursorShape = style <= 2 ? CursorShape::Block : style <= 4 ? CursorShape::Underline : CursorShape::Bar;
    t.modes.set(Mode::BlinkCursor, style == 0 || style % 2 == 1);
}

void repeatCharacter(Emulator& t, const Sequence& s)
{
    if (!t.lastPrinted)
        return;
    const int most = t.rows() * t.columns();
    for (int count = std::min(s.params.amount(0), most); count > 0; --count)
        t.printCharacter(t.lastPrinted);
}

void backIndex(Emulator& t, const Sequence&)
{
    t.cursor.pendingWrap = false;
    if (t.cursor.column != t.margins.left) {
        t.cursor.column -= t.cursor.column > 0;
    } else if (t.inMargins()) {
        for (int row = t.margins.top; row < t.margins.bottom; ++row)
            t.shiftRight(row, t.margins.left, t.margins.right, 1);
    }
}

void forwardIndex(Emulator& t, const Sequence&)
{
    t.cursor.pendingWrap = false;
    if (t.cursor.column != t.margins.right - 1) {
        t.moveTo(t.cursor.row, t.cursor.column + 1);
    } else if (t.inMargins()) {
        for (int row = t.margins.top; row < t.margins.bottom; ++row)
            t.shiftLeft(row, t.margins.left, t.margins.right, 1);
    }
}

}
