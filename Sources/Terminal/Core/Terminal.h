#pragma once

#include "Terminal/Core/Config.h"
#include "Terminal/Core/HistoryView.h"
#include "Terminal/Core/Listener.h"
#include "Terminal/Core/Modes.h"
#include "Terminal/Core/Palette.h"
#include "Terminal/Core/Screen.h"
#include "Terminal/Core/Search.h"
#include "Terminal/Core/Selection.h"
#include "Terminal/Core/Snapshot.h"
#include "Terminal/Graphics/Graphics.h"
#include "Terminal/Input/KeyEvent.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

namespace corvane::terminal {

class Emulator;

/// Bytes that the terminal holds.
struct Memory {
    size_t screens = 0;
    size_t history = 0;
    size_t tables = 0;
    size_t images = 0;
};

/// A terminal without a display: bytes of a program go in, a page of cells and answers come out. It does no input or
/// output and has no clock of its own. For one thread at a time; two terminals share nothing that changes.
class Terminal {
public:
    explicit Terminal(Size size = {}, const Config& config = {});
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Takes what the program wrote, cut anywhere. Bad input is passed over.
    void feed(std::string_view bytes);
    /// What the program is to read: answers to its questions, and input.
    std::string_view replies() const;
    void consumeReplies(size_t count);

    /// Null for none. Must live as long as it is set.
    void setListener(Listener* listener);
    const Config& config() const;
    /// As Config::set, at once.
    bool setOption(std::string_view name, std::string_view value);
    /// The colours that a reset goes back to. What the program changed stays as it made it.
    void setColors(const PaletteState& colors, bool dark);

    // Input; what the program gets of it comes with the replies. False if it gets nothing.
    bool key(const KeyEvent& event);
    bool mouse(const MouseEvent& event);
    bool paste(std::string_view text);
    bool focus(bool in);
    /// What was typed by other means than keys, such as an input method, as it is.
    bool type(std::string_view text);

    void resize(Size size);
    Size size() const;
    /// As the user may ask for; the program does it by RIS.
    void reset();

    CursorState cursor() const;
    bool has(Mode mode) const;
    bool isAlternate() const;
    const std::string& title() const;
    const std::string& icon() const;
    const PaletteState& palette() const;

    /// How many rows the history has at the present width.
    size_t historyRows() const;
    /// From -historyRows() to size().rows - 1.
    void readRow(int64_t row, RowView& view);
    /// The whole history, line by line: quicker than row by row.
    void eachHistoryRow(const std::function<void(const RowView&)>& visit);
    const Style& style(StyleId id) const;
    std::string text(Cell cell) const;
    std::string_view linkAddress(uint32_t link) const;

    /// Brings the snapshot up to date, for a view whose first row is `top`: only rows that changed are copied.
    void snapshot(int64_t top, Snapshot& snapshot);
    HistoryPlace placeInHistory(int64_t row); ///< of a negative row
    /// The row, negative; the oldest one where the place is gone, 0 if its text is back on the screen.
    int64_t rowOf(HistoryPlace place);

    /// Grows with every change.
    uint64_t generation() const;
    /// When the row of the screen was last changed.
    uint64_t rowGeneration(int row) const;
    std::vector<ScrollLog::Entry> takeScrolls();

    /// The prompts, inputs and outputs that the shell marked, oldest first; rows as in readRow.
    struct PromptRange {
        PromptMark kind;
        int64_t row;
        int column;
        int64_t endRow;
        int endColumn; ///< one past the last
        int exitCode; ///< of an output; -1 where it is not known
    };
    std::vector<PromptRange> marks();

    Selection& selection();
    /// All matches, oldest first; if there are more than `most`, the newest.
    std::vector<SearchMatch> search(const Pattern& pattern, size_t most);
    /// One step of a search that leaves the terminal to others in between; false when it is done.
    bool search(SearchRun& run);

    /// Images in the order in which they are drawn; rows as in readRow.
    std::vector<PlacementView> placements();
    const ImageStore& images() const;
    /// Of an image that the listener was asked to have decoded; it may be smaller than it claimed.
    void setPicture(uint32_t image, Bitmap bitmap);

    /// Lets time pass: `now` in nanoseconds of any steady clock. Answers in how many something is due again, -1 for
    /// never.
    int64_t tick(int64_t now);
    /// The program holds back what it draws (mode 2026); lifted by `tick` when that takes too long.
    bool isFrozen() const;

    Memory memory() const;
    /// Packs up to `pages` pages of the history that nobody looked at for long; false when there was nothing to do.
    bool compressHistory(size_t pages);

    /// Null, or what is wrong inside; for tests.
    const char* fault() const;

    Emulator& emulator() { return *m_emulator; }

private:
    std::unique_ptr<Emulator> m_emulator;
};

}
