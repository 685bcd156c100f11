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

/// Memory use in bytes.
struct Memory {
    size_t screens = 0;
    size_t history = 0;
    size_t tables = 0;
    size_t images = 0;
};

/// A terminal without a display: takes a program's output, and maintains a page of cells and a queue of replies. It
/// does no I/O and has no clock. Not thread-safe; separate terminals share no mutable state.
class Terminal {
public:
    explicit Terminal(Size size = {}, const Config& config = {});
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Takes output of the program, split anywhere. Malformed input is ignored.
    void feed(std::string_view bytes);
    /// Bytes to send to the program: replies to its queries, and input.
    std::string_view replies() const;
    void consumeReplies(size_t count);

    /// May be null. Must outlive its registration.
    void setListener(Listener* listener);
    const Config& config() const;
    /// Like Config::set, with immediate effect.
    bool setOption(std::string_view name, std::string_view value);
    /// The default colours. Colours that the program changed are kept.
    void setColors(const PaletteState& colors, bool dark);

    // Input. What is to be sent is added to the replies; false if that is nothing.
    bool key(const KeyEvent& event);
    bool mouse(const MouseEvent& event);
    bool paste(std::string_view text);
    bool focus(bool in);
    /// Text from other sources than keys, such as an input method; it is sent unchanged.
    bool type(std::string_view text);

    void resize(Size size);
    Size size() const;
    /// For use by the user; a program sends RIS.
    void reset();

    CursorState cursor() const;
    bool has(Mode mode) const;
    bool isAlternate() const;
    const std::string& title() const;
    const std::string& icon() const;
    const PaletteState& palette() const;

    /// The rows of the history at the current width.
    size_t historyRows() const;
    /// From -historyRows() to size().rows - 1.
    void readRow(int64_t row, RowView& view);
    /// Visits the whole history line by line, which is faster than by rows.
    void eachHistoryRow(const std::function<void(const RowView&)>& visit);
    const Style& style(StyleId id) const;
    std::string text(Cell cell) const;
    std::string_view linkAddress(uint32_t link) const;

    /// Updates the snapshot for a view whose first row is `top`. Copies only rows that changed.
    void snapshot(int64_t top, Snapshot& snapshot);
    HistoryPlace placeInHistory(int64_t row); ///< `row` is negative
    /// The row, negative; the oldest row if the place is gone, 0 if its text is back on the screen.
    int64_t rowOf(HistoryPlace place);

    /// Increases with every change.
    uint64_t generation() const;
    /// The generation of the last change of a screen row.
    uint64_t rowGeneration(int row) const;
    std::vector<ScrollLog::Entry> takeScrolls();

    /// The prompts, inputs and outputs marked by the shell, oldest first; rows as in readRow.
    struct PromptRange {
        PromptMark kind;
        int64_t row;
        int column;
        int64_t endRow;
        int endColumn; ///< one past the last
        int exitCode; ///< for outputs; -1 if unknown
    };
    std::vector<PromptRange> marks();

    Selection& selection();
    /// All matches, oldest first; at most `most`, the newest.
    std::vector<SearchMatch> search(const Pattern& pattern, size_t most);
    /// Runs one step of a search, so that others can use the terminal in between; false when done.
    bool search(SearchRun& run);

    /// Placements in drawing order; rows as in readRow.
    std::vector<PlacementView> placements();
    const ImageStore& images() const;
    /// Sets the picture of an image that the listener was asked to decode; it may be smaller than claimed.
    void setPicture(uint32_t image, Bitmap bitmap);

    /// Advances time: `now` is in nanoseconds of any steady clock. Returns the nanoseconds until the next call is due,
    /// or -1 for never.
    int64_t tick(int64_t now);
    /// The program has suspended drawing (mode 2026); `tick` ends that after a timeout.
    bool isFrozen() const;

    Memory memory() const;
    /// Compresses up to `pages` pages of the history that were not read lately; false if there was none.
    bool compressHistory(size_t pages);

    /// A description of an internal inconsistency, or null; for tests.
    const char* fault() const;

    Emulator& emulator() { return *m_emulator; }

private:
    std::unique_ptr<Emulator> m_emulator;
};

}
