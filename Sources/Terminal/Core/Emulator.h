#pragma once

#include "Terminal/Core/Charsets.h"
#include "Terminal/Core/Config.h"
#include "Terminal/Core/HistoryView.h"
#include "Terminal/Core/Listener.h"
#include "Terminal/Core/Modes.h"
#include "Terminal/Core/Palette.h"
#include "Terminal/Core/Screen.h"
#include "Terminal/Core/Selection.h"
#include "Terminal/Core/Snapshot.h"
#include "Terminal/Graphics/Graphics.h"
#include "Terminal/Grid/LinkTable.h"
#include "Terminal/Input/MouseEncoder.h"
#include "Terminal/Parser/Parser.h"
#include "Terminal/Text/Concat.h"
#include "Terminal/Text/Graphemes.h"

#include <deque>
#include <optional>
#include <tuple>

namespace corvane::terminal {

/// Half-open, in cells of the screen.
struct Rect {
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;
};

struct Cursor {
    int row = 0;
    int column = 0;
    bool pendingWrap = false; ///< the last column was written; the next character wraps first
    Style pen;
    Charsets charsets;
};

enum class EraseKind : uint8_t { All, Selective };

/// The state of the terminal. Members are open to the functions of this folder, which Functions.cpp lists; all other
/// code goes through Terminal.
class Emulator {
public:
    Emulator(Size size, const Config& config);

    void feed(std::span<const uint8_t> bytes);

    // The parser's sink
    void printAscii(const uint8_t* text, size_t length);
    void printPoints(const char32_t* points, size_t count);
    void printCharacter(char32_t point); ///< already translated by the character sets
    bool printsAsciiAsItIs() const { return plain; }
    void execute(uint8_t control);
    void escape(const Sequence& sequence);
    void csi(const Sequence& sequence);
    void dcsBegin(const Sequence& sequence);
    void dcsData(std::string_view data);
    void dcsEnd(bool complete);
    void osc(std::string_view text, StringEnd end);
    void apcBegin();
    void apcData(std::string_view data);
    void apcEnd(bool complete);
    void vt52(char final);
    void vt52Move(int row, int column);

    // The cursor and the page
    int columns() const { return size.columns; }
    int rows() const { return size.rows; }
    Grid& grid() { return screen->grid; }
    Row& row(int index) { return screen->grid.row(index); }
    Row& cursorRow() { return screen->grid.row(cursor.row); }
    /// One past the last column of the row; half as many in a double-width row.
    int rowEnd(const Row& row) const { return row.size == LineSize::Single ? size.columns : (size.columns + 1) / 2; }
    /// Without trailing blanks and columns past the row's end.
    int textLength(const Row& row) const { return std::min(rowEnd(row), row.contentLength()); }
    /// One past the last column that text can reach from the cursor.
    int textEnd(const Row& row) const
    {
        const int end = rowEnd(row);
        return cursor.column < margins.right ? std::min(end, margins.right) : end;
    }
    bool inMarginColumns() const { return cursor.column >= margins.left && cursor.column < margins.right; }
    bool inMargins() const { return inMarginColumns() && cursor.row >= margins.top && cursor.row < margins.bottom; }
    bool hasSideMargins() const { return margins.left > 0 || margins.right < size.columns; }
    void moveTo(int row, int column)
    {
        cursor.row = std::clamp(row, 0, size.rows - 1);
        cursor.column = std::clamp(column, 0, rowEnd(cursorRow()) - 1);
        cursor.pendingWrap = false;
    }
    /// After another row has come to the cursor: it may be a double-width one, which ends in the middle.
    void keepInRow()
    {
        if (cursor.column >= rowEnd(cursorRow()))
            moveTo(cursor.row, cursor.column);
    }
    /// Addresses as the program sends them: relative to the margins in origin mode.
    void moveToAddress(int row, int column);
    int originRow() const { return modes.has(Mode::Origin) ? margins.top : 0; }
    int originColumn() const { return modes.has(Mode::Origin) ? margins.left : 0; }
    void carriageReturn();
    void lineFeed(); ///< scrolls at the bottom margin
    void reverseLineFeed();
    void nextTab(int count);
    void backspace(int count);

    // Scrolling and erasing
    void scrollUp(const Rect& area, int count);
    void scrollDown(const Rect& area, int count);
    void deleteRows(const Rect& area, int count); ///< like scrollUp, but nothing goes to the history
    void shiftLeft(int row, int from, int to, int count);
    void shiftRight(int row, int from, int to, int count);
    /// Columns `from` to `to` of the row, except protected cells.
    void erase(int row, int from, int to, EraseKind kind = EraseKind::All);
    void eraseRow(int row, EraseKind kind = EraseKind::All);
    Cell blank(); ///< the cell that erasing leaves
    void breakLine(int row); ///< ends the line above: this row no longer continues it
    void touch(Row& row) { row.changed = generation; }
    void touchAll();
    void dropAnchors(Row& row);
    StyleId penStyle();

    // Screens and resets
    void useAlternate(bool on);
    void saveCursor();
    void restoreCursor();
    void resetMargins();
    void resetTabs();
    void softReset();
    void fullReset();
    void setColumns(int columns); ///< DECCOLM
    void resize(Size newSize);
    int64_t tick(int64_t now);
    void setMode(const ModeEntry& entry, bool on);
    void updatePlain();
    void setLineSize(LineSize lineSize); ///< of the row with the cursor
    void makeRowsSingle();
    void reportSize(); ///< mode 2048

    // Replies
    void reply(std::string_view text);
    template <typename... Parts> void replyCsi(const Parts&... parts) { reply(concat(c1Text('['), parts...)); }
    template <typename... Parts> void replyDcs(const Parts&... parts)
    {
        reply(concat(c1Text('P'), parts..., c1Text('\\')));
    }
    /// With the same terminator as the query.
    template <typename... Parts> void replyOsc(const Parts&... parts)
    {
        reply(concat(c1Text(']'), parts..., answersWithBell ? std::string("\a") : c1Text('\\')));
    }
    std::string c1Text(char letter) const;
    void setTitle(std::string_view text);
    void setIcon(std::string_view text);
    enum class Redraw : uint8_t { Prompt, Nothing };
    void addMark(PromptMark kind, int exitCode, Redraw redraw = Redraw::Prompt);
    void blankPrompt(); ///< before a resize, if the shell redraws its prompt
    /// The anchor's row (negative in the history) and column.
    std::optional<std::pair<int64_t, int>> find(Screen& on, Anchors::Id id);
    Anchors::Id anchorAt(int64_t row, int column);
    void readRow(int64_t row, RowView& view);

    Listener& out() { return *listener; }

    struct Mark {
        PromptMark kind;
        int exitCode;
        Redraw redraw; ///< what the shell redraws after a resize
        Anchors::Id anchor;
    };
    static constexpr size_t maxMarks = 20'000;
    static constexpr size_t maxReplies = 1 << 20;
    static constexpr size_t maxTitle = 1024;
    static constexpr size_t maxTitleStack = 10;

    Config config;
    Size size;
    StyleTable styles;
    ClusterTable clusters;
    LinkTable links;
    Scrollback history;
    Screen primary;
    Screen alternate;
    Screen* screen = &primary;
    Cursor cursor;
    Rect margins;
    Modes modes;
    Modes savedModes;
    std::vector<bool> tabs;
    Palette palette;
    CursorShape cursorShape = CursorShape::Block;
    int level = 525; ///< set by DECSCL
    int checksumExtension = 0;
    bool eightBitReplies = false;
    bool isoProtection = false; ///< protection was last set by SPA
    bool attributesByRectangle = false; ///< DECSACE
    std::string title;
    std::string icon;
    struct Titles {
        std::string title;
        std::string icon;
    };
    std::vector<Titles> titleStack;
    struct {
        bool setHex = false;
        bool queryHex = false;
    } titleCoding; ///< XTSMTITLE
    std::vector<Style> penStack;
    bool answersWithBell = false; ///< the last OSC ended with BEL
    std::string replies;
    Listener* listener;
    Parser<Emulator> parser { *this };
    uint64_t generation = 1;
    ScrollLog scrolls;
    struct PendingNotification {
        std::string id;
        std::string title;
        std::string body;
    };
    PendingNotification pendingNotification; ///< an OSC 99 notification that is not complete yet
    std::string pointerShape;
    std::deque<Mark> marks; ///< on the primary screen and in its history
    int64_t synchronizedSince = -1; ///< when `tick` first saw mode 2026 set
    int modifyOtherKeys = 0;
    MouseEncoder mouse;
    Graphics graphics { *this, config.imageBytes };
    Selection selection { *this };
    bool inSixel = false;

    // Device control strings
    static constexpr size_t maxString = 1 << 20;
    void (*stringFunction)(Emulator&, const Sequence&, std::string_view) = nullptr;
    Sequence stringHead;
    std::string stringData;

    // Printing
    const CodePointTable& codePoints = CodePointTable::instance();
    const Kernels& kernels = Kernels::instance();
    const TextKernels& textKernels = TextKernels::instance();
    Graphemes graphemes;
    std::tuple<int, int, bool> printedUpTo; ///< the cursor after the last printed character
    bool guardsUsed = false; ///< some cell may be guarded, so erasing has to check
    bool plain = true; ///< ASCII is printed without translation
    bool penChanged = false;
    StyleId penId = 0;
    char32_t lastPrinted = 0;

private:
    void collectTables();
    void wrap();
    void printMapped(uint8_t code);
    size_t printSimple(const char32_t* points, size_t count, uint64_t wide);
    int widthOf(CodePoint properties) const
    {
        return config.ambiguousWide && properties.ambiguous() ? 2 : properties.width();
    }
    void put(Cell cell, int width);
    bool joinPrevious(char32_t point);
    void scrollCells(const Rect& area, int count);
    void rotateUp(const Rect& area, int count);
};

}
