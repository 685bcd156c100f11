#include "Terminal/Core/Emulator.h"

#include "Terminal/Core/Functions.h"

#include <cassert>

namespace corvane::terminal {

namespace {

Listener silentListener;
// Bytes between checks whether the tables of styles, clusters and links need to be collected.
constexpr size_t slice = 64 * 1024;

}

Emulator::Emulator(Size initialSize, const Config& initialConfig)
    : config(initialConfig)
    , size(initialSize.clamped())
    , history(styles, clusters, { config.scrollbackLines, config.scrollbackBytes })
    , primary(size.columns, size.rows, &history)
    , alternate(1, 1, nullptr)
    , level(config.vtLevel)
    , checksumExtension(config.checksumExtension)
    , listener(&silentListener)
{
    resetMargins();
    resetTabs();
}

void Emulator::feed(std::span<const uint8_t> bytes)
{
    ++generation;
    while (!bytes.empty()) {
        if (styles.isFull() || clusters.isFull() || links.isFull())
            collectTables();
        const auto part = bytes.first(std::min(slice, bytes.size()));
        parser.feed(part);
        bytes = bytes.subspan(part.size());
#ifndef NDEBUG
        [[maybe_unused]] const char* const fault = screen->grid.fault();
        assert(!fault);
        assert(cursor.row >= 0 && cursor.row < rows() && cursor.column >= 0 && cursor.column < rowEnd(cursorRow()));
#endif
    }
}

/// Marks what both screens and the pens still use, and frees the rest.
void Emulator::collectTables()
{
    std::vector<bool> usedStyles(styles.capacity());
    std::vector<bool> usedClusters(clusters.capacity());
    for (Screen* each : { &primary, &alternate }) {
        for (int index = 0; index < each->grid.rows(); ++index) {
            const Row& row = each->grid.row(index);
            for (int column = 0; column < row.used; ++column) {
                const Cell cell = row.cells[column];
                usedStyles[cell.style()] = true;
                if (cell.isCluster())
                    usedClusters[cell.content()] = true;
            }
        }
    }
    styles.collect(usedStyles);
    clusters.collect(usedClusters);
    history.stylesCollected();
    penChanged = true;
    if (!links.isFull())
        return;
    std::vector<bool> usedLinks(links.capacity());
    const auto mark = [&](uint32_t link) {
        usedLinks[link] = true;
    };
    styles.eachLink(mark);
    history.eachLink(mark);
    mark(cursor.pen.link);
    mark(primary.saved.pen.link);
    mark(alternate.saved.pen.link);
    for (const Style& style : penStack)
        mark(style.link);
    links.collect(usedLinks);
}

void Emulator::execute(uint8_t control)
{
    // LF and CR are by far the most frequent.
    if (control == '\r')
        return carriageReturn();
    if (control == '\n' && !modes.has(Mode::NewLine))
        return lineFeed();
    runControl(*this, control);
}

void Emulator::escape(const Sequence& sequence)
{
    runEscape(*this, sequence);
}

void Emulator::csi(const Sequence& sequence)
{
    // CUP is the most frequent control sequence of full-screen programs.
    if (sequence.final == 'H' && sequence.leader == 0 && sequence.intermediateCount == 0)
        return moveToAddress(sequence.params.amount(0) - 1, sequence.params.amount(1) - 1);
    runCsi(*this, sequence);
}

void Emulator::moveToAddress(int row, int column)
{
    if (modes.has(Mode::Origin)) {
        row = std::clamp(row + margins.top, margins.top, margins.bottom - 1);
        column = std::clamp(column + margins.left, margins.left, margins.right - 1);
    }
    moveTo(row, column);
}

void Emulator::carriageReturn()
{
    cursor.pendingWrap = false;
    cursor.column = cursor.column >= margins.left || modes.has(Mode::Origin) ? margins.left : 0;
}

void Emulator::lineFeed()
{
    cursor.pendingWrap = false;
    if (cursor.row == margins.bottom - 1) {
        if (inMarginColumns())
            scrollUp(margins, 1);
    } else if (cursor.row < size.rows - 1) {
        ++cursor.row;
        if (row(cursor.row).size != LineSize::Single)
            moveTo(cursor.row, cursor.column);
    }
}

void Emulator::reverseLineFeed()
{
    cursor.pendingWrap = false;
    if (cursor.row == margins.top) {
        if (inMarginColumns())
            scrollDown(margins, 1);
    } else if (cursor.row > 0) {
        moveTo(cursor.row - 1, cursor.column);
    }
}

void Emulator::nextTab(int count)
{
    if (modes.has(Mode::MoreFix) && cursor.pendingWrap)
        wrap();
    const int last = textEnd(cursorRow()) - 1;
    while (count-- > 0 && cursor.column < last) {
        ++cursor.column;
        while (cursor.column < last && !tabs[size_t(cursor.column)])
            ++cursor.column;
    }
}

void Emulator::backspace(int count)
{
    const bool wraps
        = modes.has(Mode::AutoWrap) && (modes.has(Mode::ReverseWrap) || modes.has(Mode::ExtendedReverseWrap));
    if (cursor.pendingWrap) {
        cursor.pendingWrap = false;
        // With reverse wrap, the cursor counts as past the last column.
        if (wraps && --count == 0)
            return;
    }
    while (count > 0) {
        const int left = cursor.column >= margins.left ? margins.left : 0;
        const int step = std::min(count, cursor.column - left);
        cursor.column -= step;
        count -= step;
        if (count == 0 || !wraps)
            return;
        if (cursor.row == margins.top) {
            if (!modes.has(Mode::ExtendedReverseWrap))
                return;
            cursor.row = margins.bottom - 1;
        } else if (cursor.row > 0) {
            --cursor.row;
        } else {
            return;
        }
        cursor.column = std::min(margins.right, rowEnd(cursorRow())) - 1;
        --count;
    }
}

void Emulator::dropAnchors(Row& row)
{
    if (row.anchored)
        screen->anchors.rowGone(row.id);
}

void Emulator::touchAll()
{
    for (int index = 0; index < rows(); ++index)
        touch(row(index));
}

Cell Emulator::blank()
{
    if (cursor.pen.background.bits == 0 || !config.backgroundErase)
        return {};
    Style style;
    style.background = cursor.pen.background;
    return Cell::erased(styles.intern(style));
}

void Emulator::breakLine(int index)
{
    if (index > 0)
        row(index - 1).wrapped = false;
    else if (screen->history)
        screen->history->endLine();
}

void Emulator::scrollUp(const Rect& area, int count)
{
    count = std::min(count, area.bottom - area.top);
    const bool kept = area.top == 0 && screen->history && config.scrollbackLines > 0;
    if (!kept || area.left > 0 || area.right < size.columns) {
        deleteRows(area, count);
        return;
    }
    if (area.bottom < size.rows)
        row(area.bottom - 1).wrapped = false;
    for (int index = 0; index < count; ++index) {
        const Row& leaving = row(index);
        const Scrollback::Position position = history.push(leaving, rowEnd(leaving));
        if (leaving.anchored)
            screen->anchors.rowLeft(leaving.id, position.line, position.offset);
    }
    rotateUp(area, count);
}

void Emulator::deleteRows(const Rect& area, int count)
{
    count = std::min(count, area.bottom - area.top);
    if (count <= 0)
        return;
    if (area.left > 0 || area.right < size.columns) {
        scrollCells(area, count);
        return;
    }
    breakLine(area.top);
    row(area.bottom - 1).wrapped = false;
    for (int index = area.top; index < area.top + count; ++index)
        dropAnchors(row(index));
    rotateUp(area, count);
}

/// The freed rows reappear blank at the bottom of the area.
void Emulator::rotateUp(const Rect& area, int count)
{
    grid().rotateUp(area.top, area.bottom, count);
    const Cell fill = blank();
    for (int index = area.bottom - count; index < area.bottom; ++index) {
        Row& fresh = row(index);
        if (fill != Cell())
            fresh.fill(0, size.columns, fill);
        touch(fresh);
    }
    scrolls.add(area.top, area.bottom, count);
}

void Emulator::scrollDown(const Rect& area, int count)
{
    count = std::min(count, area.bottom - area.top);
    if (count <= 0)
        return;
    if (area.left > 0 || area.right < size.columns) {
        scrollCells(area, -count);
        return;
    }
    Grid& page = grid();
    breakLine(area.top);
    for (int index = area.bottom - count; index < area.bottom; ++index)
        dropAnchors(page.row(index));
    page.rotateDown(area.top, area.bottom, count);
    page.row(area.bottom - 1).wrapped = false;
    const Cell fill = blank();
    for (int index = area.top; index < area.top + count; ++index) {
        Row& fresh = page.row(index);
        if (fill != Cell())
            fresh.fill(0, size.columns, fill);
        touch(fresh);
    }
    scrolls.add(area.top, area.bottom, -count);
}

/// Between side margins the cells themselves are moved, down if `count` is negative.
void Emulator::scrollCells(const Rect& area, int count)
{
    Grid& page = grid();
    const int height = area.bottom - area.top;
    const Cell fill = blank();
    for (int step = 0; step < height; ++step) {
        const int index = count > 0 ? area.top + step : area.bottom - 1 - step;
        Row& target = page.row(index);
        target.cutAround(area.left, area.right);
        target.wrapped = false;
        const int from = index + count;
        if (from < area.top || from >= area.bottom) {
            target.fill(area.left, area.right, fill);
        } else {
            Row& source = page.row(from);
            source.cutAround(area.left, area.right);
            std::copy(source.cells + area.left, source.cells + area.right, target.cells + area.left);
            target.styled |= source.styled;
            target.complex |= source.complex;
            target.touch(area.right);
        }
        touch(target);
    }
}

void Emulator::shiftRight(int index, int from, int to, int count)
{
    Row& target = row(index);
    count = std::min(count, to - from);
    target.cutAround(from, to);
    target.cutWide(to - count);
    std::copy_backward(target.cells + from, target.cells + to - count, target.cells + to);
    target.touch(to);
    target.fill(from, from + count, blank());
    touch(target);
}

void Emulator::shiftLeft(int index, int from, int to, int count)
{
    Row& target = row(index);
    count = std::min(count, to - from);
    target.cutAround(from, to);
    target.cutWide(from + count);
    std::copy(target.cells + from + count, target.cells + to, target.cells + from);
    target.touch(to);
    target.fill(to - count, to, blank());
    target.wrapped = false;
    touch(target);
}

void Emulator::erase(int index, int from, int to, EraseKind kind)
{
    Row& target = row(index);
    if (from >= to)
        return;
    touch(target);
    if (to >= rowEnd(target))
        target.wrapped = false;
    if (from == 0 && to >= rowEnd(target))
        breakLine(index);
    const Cell fill = blank();
    if (kind == EraseKind::All && !guardsUsed) {
        target.cutAround(from, to);
        target.fill(from, to, fill);
        return;
    }
    const auto passed = kind == EraseKind::Selective ? Style::Protected : Style::Guarded;
    target.touch(to);
    for (int column = from; column < to; ++column) {
        if (styles[target.cells[column].style()].has(passed))
            continue;
        target.cutAround(column, column + 1);
        target.cells[column] = fill;
        target.styled |= fill.style() != 0;
    }
}

void Emulator::eraseRow(int index, EraseKind kind)
{
    Row& target = row(index);
    if (kind == EraseKind::All && !guardsUsed) {
        breakLine(index);
        dropAnchors(target);
        grid().renew(target);
        target.fill(0, size.columns, blank());
        touch(target);
        return;
    }
    erase(index, 0, size.columns, kind);
}

void Emulator::reply(std::string_view text)
{
    if (replies.size() + text.size() <= maxReplies)
        replies.append(text);
}

std::string Emulator::c1Text(char letter) const
{
    return eightBitReplies ? std::string(1, char(letter + 0x40)) : std::string { '\x1b', letter };
}

}
