#pragma once

#include "Terminal/Text/Pattern.h"

#include <cstdint>
#include <vector>

namespace corvane::terminal {

class Emulator;
class Scrollback;
struct HistoryLine;

/// Rows as in Terminal::readRow; the end is one past the last column.
struct SearchMatch {
    int64_t row;
    int column;
    int64_t endRow;
    int endColumn;
};

/// A search through the history and the screen, line by line, whatever their wrapping. It goes from the newest page of
/// the history to the oldest in short steps, so that the terminal is free for others in between.
class SearchRun {
public:
    /// Finds at most `most` matches, the newest ones.
    SearchRun(Pattern pattern, size_t most)
        : m_pattern(std::move(pattern))
        , m_most(most)
    {
    }

    /// The next page of the history; the last step takes the screen and what has left it meanwhile. False when done.
    bool step(Emulator& terminal);

    /// Oldest first, when done.
    const std::vector<SearchMatch>& matches() const { return m_matches; }
    uint64_t generation() const { return m_generation; } ///< of the terminal when done

private:
    void begin(const Emulator& terminal);
    void finish(Emulator& terminal);
    void searchLine(Emulator& terminal, const HistoryLine& line, uint64_t number, int64_t row);
    void searchNewLines(Emulator& terminal);
    void searchScreen(Emulator& terminal);

    Pattern m_pattern;
    size_t m_most;
    const Scrollback* m_history = nullptr; ///< of the screen that is searched
    int m_columns = 0; ///< 0 before the beginning
    uint64_t m_end = 0; ///< one past the last line of the history at the beginning
    uint64_t m_next = 0; ///< one past the next line to be searched
    int64_t m_below = 0; ///< rows from there to `m_end`
    std::vector<SearchMatch> m_matches; ///< until it is done the newest first, rows counted from `m_end`
    uint64_t m_generation = 0;
};

}
