#include "Terminal/Core/Functions.h"

namespace corvane::terminal {

namespace {

void eraseInDisplay(Emulator& t, int what, EraseKind kind)
{
    const int row = t.cursor.row;
    const int end = t.columns();
    const bool wasPending = std::exchange(t.cursor.pendingWrap, false);
    switch (what) {
    case 0:
        if (t.cursor.column == 0 && kind == EraseKind::All)
            t.eraseRow(row);
        else
            t.erase(row, t.cursor.column, end, kind);
        for (int below = row + 1; below < t.rows(); ++below)
            t.eraseRow(below, kind);
        break;
    case 1:
        for (int above = 0; above < row; ++above)
            t.eraseRow(above, kind);
        t.erase(row, 0, t.cursor.column + 1, kind);
        break;
    case 2:
        for (int each = 0; each < t.rows(); ++each)
            t.eraseRow(each, kind);
        break;
    case 3:
        if (kind == EraseKind::All)
            t.history.clear();
        break;
    default:
        t.cursor.pendingWrap = wasPending;
    }
}

void eraseInLine(Emulator& t, int what, EraseKind kind)
{
    if (what > 2)
        return;
    t.cursor.pendingWrap = false;
    const int from = what == 0 ? t.cursor.column : 0;
    t.erase(t.cursor.row, from, what == 1 ? t.cursor.column + 1 : t.columns(), kind);
}

Rect fromCursorDown(const Emulator& t)
{
    Rect area = t.margins;
    area.top = t.cursor.row;
    return area;
}

/// Shifts the cells of every row between the margins, starting at column `from`.
void shiftRows(Emulator& t, void (Emulator::*shift)(int, int, int, int), int from, int count)
{
    if (!t.inMargins())
        return;
    t.cursor.pendingWrap = false;
    for (int row = t.margins.top; row < t.margins.bottom; ++row)
        (t.*shift)(row, from, t.margins.right, count);
}

}

void eraseDisplay(Emulator& t, const Sequence& s)
{
    eraseInDisplay(t, s.params.at(0), EraseKind::All);
}

void selectiveEraseDisplay(Emulator& t, const Sequence& s)
{
    eraseInDisplay(t, s.params.at(0), EraseKind::Selective);
}

void eraseLine(Emulator& t, const Sequence& s)
{
    eraseInLine(t, s.params.at(0), EraseKind::All);
}

void selectiveEraseLine(Emulator& t, const Sequence& s)
{
    eraseInLine(t, s.params.at(0), EraseKind::Selective);
}

void eraseCharacters(Emulator& t, const Sequence& s)
{
    t.cursor.pendingWrap = false;
    const int end = std::min(t.columns(), t.cursor.column + s.params.amount(0));
    t.erase(t.cursor.row, t.cursor.column, end);
}

void insertCharacters(Emulator& t, const Sequence& s)
{
    t.cursor.pendingWrap = false;
    if (t.inMarginColumns())
        t.shiftRight(t.cursor.row, t.cursor.column, t.margins.right, s.params.amount(0));
}

void deleteCharacters(Emulator& t, const Sequence& s)
{
    t.cursor.pendingWrap = false;
    if (t.inMarginColumns())
        t.shiftLeft(t.cursor.row, t.cursor.column, t.margins.right, s.params.amount(0));
}

void insertLines(Emulator& t, const Sequence& s)
{
    if (!t.inMargins())
        return;
    t.scrollDown(fromCursorDown(t), s.params.amount(0));
    t.carriageReturn();
}

void deleteLines(Emulator& t, const Sequence& s)
{
    if (!t.inMargins())
        return;
    t.deleteRows(fromCursorDown(t), s.params.amount(0));
    t.carriageReturn();
}

void scrollUpFunction(Emulator& t, const Sequence& s)
{
    t.scrollUp(t.margins, s.params.amount(0));
    t.keepInRow();
}

void scrollDownFunction(Emulator& t, const Sequence& s)
{
    // With five parameters it would start highlight mouse tracking.
    if (s.params.count() <= 1)
        t.scrollDown(t.margins, s.params.amount(0));
    t.keepInRow();
}

void shiftLeftFunction(Emulator& t, const Sequence& s)
{
    shiftRows(t, &Emulator::shiftLeft, t.margins.left, s.params.amount(0));
}

void shiftRightFunction(Emulator& t, const Sequence& s)
{
    shiftRows(t, &Emulator::shiftRight, t.margins.left, s.params.amount(0));
}

void insertColumns(Emulator& t, const Sequence& s)
{
    shiftRows(t, &Emulator::shiftRight, t.cursor.column, s.params.amount(0));
}

void deleteColumns(Emulator& t, const Sequence& s)
{
    shiftRows(t, &Emulator::shiftLeft, t.cursor.column, s.params.amount(0));
}

void alignmentPattern(Emulator& t, const Sequence&)
{
    t.resetMargins();
    t.modes.set(Mode::Origin, false);
    for (int row = 0; row < t.rows(); ++row) {
        t.eraseRow(row);
        t.row(row).fill(0, t.columns(), Cell::character('E', 0));
    }
    t.moveTo(0, 0);
}

}
