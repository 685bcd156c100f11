#include "Terminal/Core/Functions.h"

namespace corvane::terminal {

void Emulator::saveCursor()
{
    screen->saved
        = { cursor.row, cursor.column, cursor.pendingWrap, modes.has(Mode::Origin), cursor.pen, cursor.charsets };
}

void Emulator::restoreCursor()
{
    const SavedCursor& saved = screen->saved;
    cursor.pen = saved.pen;
    cursor.charsets = saved.charsets;
    penChanged = true;
    modes.set(Mode::Origin, saved.origin);
    moveTo(saved.row, saved.column);
    cursor.pendingWrap = saved.pendingWrap && saved.column == cursor.column;
    updatePlain();
}

void Emulator::resetMargins()
{
    margins = { 0, 0, size.rows, size.columns };
}

void Emulator::resetTabs()
{
    tabs.assign(size_t(size.columns), false);
    for (size_t column = 8; column < tabs.size(); column += 8)
        tabs[column] = true;
}

void Emulator::setLineSize(LineSize lineSize)
{
    if (modes.has(Mode::LeftRightMargins))
        return;
    Row& target = cursorRow();
    target.size = lineSize;
    touch(target);
    if (lineSize != LineSize::Single) {
        // Text right of the middle reappears when the row is single-width again.
        target.cutWide(rowEnd(target));
        target.wrapped = false;
        moveTo(cursor.row, cursor.column);
    }
}

/// Rows of double width and side margins exclude each other.
void Emulator::makeRowsSingle()
{
    for (int index = 0; index < rows(); ++index) {
        if (std::exchange(row(index).size, LineSize::Single) != LineSize::Single)
            touch(row(index));
    }
}

void Emulator::softReset()
{
    for (const Mode mode : { Mode::Insert, Mode::Origin, Mode::ReverseWrap, Mode::CursorKeys, Mode::ApplicationKeypad,
             Mode::KeyboardLocked, Mode::NationalSets, Mode::LeftRightMargins, Mode::ExtendedReverseWrap })
        modes.set(mode, false);
    modes.set(Mode::AutoWrap, true);
    modes.set(Mode::CursorVisible, true);
    resetMargins();
    cursor.pen = {};
    cursor.charsets = {};
    cursor.pendingWrap = false;
    penChanged = true;
    screen->saved = {};
    primary.keyboard = alternate.keyboard = {};
    modifyOtherKeys = 0;
    attributesByRectangle = false;
    checksumExtension = config.checksumExtension;
    updatePlain();
}

void Emulator::fullReset()
{
    useAlternate(false);
    softReset();
    modes.reset();
    savedModes.reset();
    eightBitReplies = false;
    level = config.vtLevel;
    cursorShape = CursorShape::Block;
    titleCoding = {};
    penStack.clear();
    titleStack.clear();
    if (!title.empty())
        setTitle({});
    if (!icon.empty())
        setIcon({});
    if (!std::exchange(pointerShape, {}).empty())
        listener->pointerShape({});
    guardsUsed = false;
    if (palette.current != palette.initial)
        listener->paletteChanged();
    palette.current = palette.initial;
    palette.stack.clear();
    palette.stackTop = 0;
    lastPrinted = 0;
    graphemes.restart();
    resetTabs();
    for (int index = 0; index < rows(); ++index)
        eraseRow(index);
    graphics.clear();
    selection.clear();
    alternate = Screen(1, 1, nullptr);
    primary.saved = {};
    moveTo(0, 0);
    parser.reset();
}

void Emulator::setColumns(int wanted)
{
    Size changed = size;
    changed.columns = wanted;
    const bool clears = !modes.has(Mode::NoClearOnColumns);
    for (int index = 0; index < rows(); ++index) {
        Row& each = row(index);
        if (clears) {
            eraseRow(index);
        } else {
            // What no longer fits is cropped, not wrapped.
            each.cutWide(wanted);
            each.fill(wanted, size.columns, Cell());
            each.wrapped = false;
        }
    }
    if (changed != size) {
        resize(changed);
        listener->resizeRequest(size.columns, size.rows);
    }
    resetMargins();
    modes.set(Mode::LeftRightMargins, false);
    moveTo(0, 0);
}

void Emulator::reportSize()
{
    if (modes.has(Mode::InBandResize))
        replyCsi("48;", size.rows, ';', size.columns, ';', size.rows * size.cellHeight, ';',
            size.columns * size.cellWidth, 't');
}

int64_t Emulator::tick(int64_t now)
{
    constexpr int64_t longestHold = 500'000'000;
    int64_t next = graphics.tick(now);
    if (!modes.has(Mode::SynchronizedOutput))
        return next;
    if (synchronizedSince < 0)
        synchronizedSince = now;
    const int64_t left = synchronizedSince + longestHold - now;
    if (left <= 0)
        modes.set(Mode::SynchronizedOutput, false);
    else
        next = next < 0 ? left : std::min(next, left);
    return next;
}

void Emulator::dcsBegin(const Sequence& sequence)
{
    stringHead = sequence;
    stringData.clear();
    stringFunction = findString(sequence);
    inSixel = sequence.final == 'q' && sequence.leader == 0 && sequence.intermediateCount == 0;
    if (inSixel)
        graphics.beginSixel({ sequence.params.at(0), sequence.params.at(1), sequence.params.at(2) });
}

void Emulator::dcsData(std::string_view data)
{
    if (inSixel)
        graphics.sixelData(data);
    else if (stringFunction && stringData.size() + data.size() <= maxString)
        stringData.append(data);
    else
        stringFunction = nullptr;
}

void Emulator::dcsEnd(bool complete)
{
    if (std::exchange(inSixel, false))
        graphics.endSixel(complete);
    if (const auto function = std::exchange(stringFunction, nullptr); function && complete)
        function(*this, stringHead, stringData);
    stringData = {};
}

void Emulator::apcBegin()
{
    graphics.begin();
}

void Emulator::apcData(std::string_view data)
{
    graphics.data(data);
}

void Emulator::apcEnd(bool complete)
{
    graphics.end(complete);
}

std::optional<std::pair<int64_t, int>> Emulator::find(Screen& on, Anchors::Id id)
{
    const Place& place = on.anchors[id];
    if (place.where == Place::Where::OnScreen) {
        for (int index = 0; index < on.grid.rows(); ++index) {
            if (on.grid.row(index).id == place.line)
                return std::pair(int64_t(index), int(place.offset));
        }
    }
    if (place.where == Place::Where::InHistory && place.line >= history.firstLine() && place.line < history.lineEnd())
        return HistoryView(history, size.columns).placeOf(place.line, place.offset);
    return {};
}

Anchors::Id Emulator::anchorAt(int64_t index, int column)
{
    column = std::clamp(column, 0, size.columns - 1);
    if (index >= 0 || history.lines() == 0 || !screen->history)
        return screen->anchors.add(row(int(std::clamp<int64_t>(index, 0, size.rows - 1))), column);
    HistoryView view(history, size.columns);
    const auto address = view.addressOf(index);
    return screen->anchors.addInHistory(address.line, uint32_t(view.startOf(address) + size_t(column)));
}

void Emulator::readRow(int64_t index, RowView& view)
{
    if (index < 0) {
        HistoryView past(history, size.columns);
        return past.read(past.addressOf(index), view);
    }
    const Row& source = row(int(index));
    view.cells.assign(source.cells, source.cells + textLength(source));
    view.size = source.size;
    view.continued = index > 0 ? row(int(index) - 1).wrapped : screen->history && screen->history->isOpen();
}

void Emulator::vt52(char final)
{
    static const Sequence once {};
    switch (final) {
    case 'A':
        return cursorUp(*this, once);
    case 'B':
        return cursorDown(*this, once);
    case 'C':
        return cursorForward(*this, once);
    case 'D':
        return cursorBackward(*this, once);
    case 'F':
        cursor.charsets.designated[0] = Charset::SpecialGraphics;
        return updatePlain();
    case 'G':
        cursor.charsets.designated[0] = Charset::Ascii;
        return updatePlain();
    case 'H':
        return moveTo(0, 0);
    case 'I':
        return reverseLineFeed();
    case 'J':
        return eraseDisplay(*this, once);
    case 'K':
        return eraseLine(*this, once);
    case 'Z':
        return reply("\x1b/Z");
    case '=':
        return modes.set(Mode::ApplicationKeypad, true);
    case '>':
        return modes.set(Mode::ApplicationKeypad, false);
    case '<':
        parser.setVt52(false);
        return modes.set(Mode::Ansi, true);
    default:
        return;
    }
}

void Emulator::vt52Move(int row, int column)
{
    moveTo(row < rows() ? row : cursor.row, column);
}

}
