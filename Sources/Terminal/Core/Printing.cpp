#include "Terminal/Core/Emulator.h"

#include <array>
#include <bit>

namespace corvane::terminal {

namespace {
// For shorter runs, the call through a pointer costs more than the loop.
constexpr size_t shortRun = 12;

/// For each set of properties: whether the character joins nothing and has a width (bit 0), and whether it is wide (bit
/// 32).
using PointKinds = std::array<uint64_t, 256>;

constexpr PointKinds pointKinds(bool clustered, bool ambiguousWide)
{
    PointKinds kinds {};
    for (size_t bits = 0; bits < kinds.size(); ++bits) {
        const CodePoint point { uint8_t(bits) };
        const bool isSimple = point.width() != 0 && (!clustered || Graphemes::isStandalone(point));
        const bool isWide = point.width() == 2 || (ambiguousWide && point.ambiguous());
        kinds[bits] = uint64_t(isSimple) | uint64_t(isWide) << 32;
    }
    return kinds;
}

constexpr PointKinds allPointKinds[2][2]
    = { { pointKinds(false, false), pointKinds(false, true) }, { pointKinds(true, false), pointKinds(true, true) } };

/// For at most 32 characters; the first is in the lowest bits.
uint64_t kindsOf(const CodePointTable& table, const PointKinds& kinds, const char32_t* points, size_t count)
{
    uint64_t found = 0;
    for (size_t i = 0; i < count; ++i)
        found |= kinds[table[points[i]].bits] << i;
    return found;
}

}

StyleId Emulator::penStyle()
{
    if (penChanged) {
        penId = styles.intern(cursor.pen);
        penChanged = false;
    }
    return penId;
}

void Emulator::updatePlain()
{
    plain = cursor.charsets.designated[cursor.charsets.left] == Charset::Ascii && cursor.charsets.single == 0
        && !modes.has(Mode::Insert);
}

void Emulator::printAscii(const uint8_t* text, size_t length)
{
    if (!plain || graphemes.mayJoinPlainText()) [[unlikely]] {
        for (size_t i = 0; i < length; ++i)
            printMapped(text[i]);
        return;
    }
    const StyleId style = penStyle();
    const uint64_t high = uint64_t(style) << 32;
    lastPrinted = text[length - 1];
    graphemes.afterPlainText();
    while (length > 0) {
        if (cursor.pendingWrap)
            wrap();
        Row& row = cursorRow();
        const int from = cursor.column;
        const int end = textEnd(row);
        const auto space = size_t(end - from);
        const size_t count = std::min(length, space);
        const int to = from + int(count);
        row.cutAround(from, to);
        auto* const cells = reinterpret_cast<uint64_t*>(row.cells + from);
        if (count == 1) {
            cells[0] = high | text[0];
        } else if (count < shortRun) {
            for (size_t i = 0; i < count; ++i)
                cells[i] = high | text[i];
        } else {
            kernels.widen(cells, text, count, high);
        }
        row.styled |= style != 0;
        row.touch(to);
        row.changed = generation;
        text += count;
        length -= count;
        if (to < end) {
            cursor.column = to;
            continue;
        }
        cursor.column = end - 1;
        cursor.pendingWrap = modes.has(Mode::AutoWrap);
        if (length > 0 && !cursor.pendingWrap) {
            // Without autowrap, further characters overwrite the last column.
            cells[count - 1] = high | text[length - 1];
            return;
        }
    }
}

void Emulator::wrap()
{
    cursor.pendingWrap = false;
    Row& row = cursorRow();
    const uint64_t before = row.id;
    row.wrapped = !hasSideMargins();
    lineFeed();
    if (&cursorRow() == &row && row.id == before)
        row.wrapped = false; // no scrolling took place: there is no row below to continue in
    cursor.column = margins.left;
}

void Emulator::printMapped(uint8_t code)
{
    Charsets& charsets = cursor.charsets;
    const Charset set = charsets.designated[charsets.single ? charsets.single : charsets.left];
    if (charsets.single) {
        charsets.single = 0;
        updatePlain();
    }
    const bool asAscii = isNational(set) && !modes.has(Mode::NationalSets);
    printCharacter(asAscii ? char32_t(code) : translate(set, code));
}

void Emulator::printPoints(const char32_t* points, size_t count)
{
    if (parser.coding() == Coding::EightBit) {
        const Charsets& charsets = cursor.charsets;
        for (size_t i = 0; i < count; ++i) {
            const bool mapped = points[i] >= 0xa0 && points[i] < 0x100;
            printCharacter(
                mapped ? translate(charsets.designated[charsets.right], uint8_t(points[i] - 0x80)) : points[i]);
        }
        return;
    }
    // Looks ahead at many characters: which are simple, and how wide they are.
    const PointKinds& kinds = allPointKinds[modes.has(Mode::GraphemeClusters)][config.ambiguousWide];
    for (size_t begin = 0; begin < count; begin += TextKernels::most) {
        const size_t here = std::min(TextKernels::most, count - begin);
        const char32_t* const text = points + begin;
        constexpr size_t half = 32;
        const uint64_t first = kindsOf(codePoints, kinds, text, std::min(here, half));
        const uint64_t second = here > half ? kindsOf(codePoints, kinds, text + half, here - half) : 0;
        const uint64_t simple = uint32_t(first) | second << half;
        const uint64_t wide = first >> half | (second >> half << half);
        for (size_t at = 0; at < here;) {
            if (const auto run = size_t(std::countr_one(simple >> at)))
                at += printSimple(text + at, std::min(run, here - at), wide >> at);
            if (at < here)
                printCharacter(text[at++]);
        }
    }
}

/// Writes characters that join nothing; returns how many of them fit before the last column.
size_t Emulator::printSimple(const char32_t* points, size_t count, uint64_t wide)
{
    if (cursor.pendingWrap || modes.has(Mode::Insert))
        return 0;
    const bool clustered = modes.has(Mode::GraphemeClusters);
    if (clustered) {
        if (std::tuple(cursor.row, cursor.column, cursor.pendingWrap) != printedUpTo)
            graphemes.afterPlainText();
        if (!graphemes.isDone())
            return 0;
    }
    Row& row = cursorRow();
    const int space = textEnd(row) - 1 - cursor.column;
    const auto wideOnes = [&] {
        return count < 64 ? wide & ((uint64_t(1) << count) - 1) : wide;
    };
    int columns = int(count) + std::popcount(wideOnes());
    while (columns > space && count > 0) {
        --count;
        columns = int(count) + std::popcount(wideOnes());
    }
    if (count == 0)
        return 0;
    row.cutWide(cursor.column);
    const StyleId style = penStyle();
    textKernels.place(row.cells + cursor.column, points, count, wideOnes(), style);
    cursor.column += columns;
    if (cursor.column < row.used && row.cells[cursor.column].part() == Cell::Part::WideTail)
        row.cells[cursor.column] = Cell::erased(row.cells[cursor.column].style());
    row.styled |= style != 0;
    row.complex = true;
    row.touch(cursor.column);
    touch(row);
    lastPrinted = points[count - 1];
    if (clustered)
        graphemes.afterStandalone(codePoints[lastPrinted]);
    printedUpTo = { cursor.row, cursor.column, false };
    return count;
}

void Emulator::printCharacter(char32_t point)
{
    const CodePoint properties = codePoints[point];
    const int width = widthOf(properties);
    if (modes.has(Mode::GraphemeClusters)) {
        const auto place = [this] {
            return std::tuple(cursor.row, cursor.column, cursor.pendingWrap);
        };
        if (place() != printedUpTo)
            graphemes.afterPlainText(); // the cursor was moved since
        if (!graphemes.startsCluster(properties) && joinPrevious(point)) {
            printedUpTo = place();
            return;
        }
        if (width == 0) {
            graphemes.afterPlainText(); // it was not printed, so nothing can join it
            return;
        }
    } else if (width == 0) {
        joinPrevious(point);
        return;
    }
    lastPrinted = point;
    put(Cell::character(point, penStyle(), width == 2 ? Cell::Part::WideHead : Cell::Part::Narrow), width);
    printedUpTo = { cursor.row, cursor.column, cursor.pendingWrap };
}

void Emulator::put(Cell cell, int width)
{
    if (cursor.pendingWrap)
        wrap();
    int end = textEnd(cursorRow());
    if (width == 2 && rowEnd(cursorRow()) == 1) {
        cell = cell.withPart(Cell::Part::Filler);
        width = 1;
    }
    if (cursor.column + width > end) {
        if (end - margins.left < width)
            return;
        if (modes.has(Mode::AutoWrap)) {
            Row& row = cursorRow();
            row.cutAround(cursor.column, end);
            row.fill(cursor.column, end, blank());
            if (!hasSideMargins() && row.size == LineSize::Single) {
                row.cells[cursor.column] = Cell::character(0, row.cells[cursor.column].style(), Cell::Part::Filler);
                row.complex = true;
                row.touch(end);
            }
            touch(row);
            wrap();
            end = textEnd(cursorRow());
        } else {
            cursor.column = end - width;
        }
    }
    Row& row = cursorRow();
    const int column = cursor.column;
    if (modes.has(Mode::Insert))
        shiftRight(cursor.row, column, end, width);
    row.cutAround(column, column + width);
    row.cells[column] = cell;
    if (width == 2)
        row.cells[column + 1] = Cell::character(0, cell.style(), Cell::Part::WideTail);
    row.styled |= cell.style() != 0;
    row.complex |= width == 2 || cell.isCluster() || cell.content() >= 0x80;
    row.touch(column + width);
    touch(row);
    cursor.column = column + width;
    if (cursor.column >= end) {
        cursor.column = end - 1;
        cursor.pendingWrap = modes.has(Mode::AutoWrap);
    }
}

/// Adds the code point to the character before the cursor. False if there is none.
bool Emulator::joinPrevious(char32_t point)
{
    Row& row = cursorRow();
    int column = cursor.pendingWrap ? cursor.column : cursor.column - 1;
    if (column > 0 && row.cells[column].part() == Cell::Part::WideTail)
        --column;
    if (column < 0 || !row.cells[column].hasText())
        return false;
    const Cell before = row.cells[column];
    if (before.isCluster() && clusters[before.content()].size() == ClusterTable::maxLength)
        return true;
    const char32_t first = before.isCluster() ? clusters[before.content()].front() : char32_t(before.content());
    const bool narrow = before.part() == Cell::Part::Narrow;
    const bool widens = narrow && modes.has(Mode::GraphemeClusters)
        && (point == variationSelector16 ? codePoints[first].emojiVariation()
                                         : codePoints[point].width() == 2
                    || codePoints[point].graphemeBreak() == GraphemeBreak::RegionalIndicator);
    const uint32_t number = clusters.join(before, point);
    if (widens) {
        cursor.column = column;
        cursor.pendingWrap = false;
        put(Cell::cluster(number, before.style(), Cell::Part::WideHead), 2);
        return true;
    }
    row.cells[column] = Cell::cluster(number, before.style(), before.part());
    row.complex = true;
    touch(row);
    return true;
}

}
