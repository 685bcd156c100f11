#pragma once

#include "Terminal/Text/Pattern.h"

#include <cstdint>
#include <vector>

namespace corvane::terminal {

class Emulator;
class Scrollback;
struct HistoryLine;

/// Rows as in Terminal::readRow; the end column is one past the last.
struct SearchMatch {
    int64_t row;
    int column;
    int64_t endRow;
    int endColumn;
};

/// Searches the history and the screen by logical lines. It goes from the newest page of the history to the oldest in
/// short steps, so that others can use the terminal in between.
class SearchRun {
public:
    /// Keeps at most `most` matches, the newest ones.
    SearchRun(Pattern pattern, size_t most)
        : m_pattern(std::move(pattern))
        , m_most(most)
    {
    }

    /// Searches the next page of the history. The last step searches the screen and the lines that left it meanwhile.
    /// False when done.
    bool step(Emulator& terminal);

    /// Valid when done; oldest first.
    const std::vector<SearchMatch>& matches() const { return m_matches; }
    uint64_t generation() const { return m_generation; } ///< the terminal's generation when done

private:
    void begin(const Emulator& terminal);
    void finish(Emulator& terminal);
    void searchLine(Emulator& terminal, const HistoryLine& line, uint64_t number, int64_t row);
    void searchNewLines(Emulator& terminal);
    void searchScreen(Emulator& terminal);

    Pattern m_pattern;
    size_t m_most;
    const Scrollback* m_history = nullptr; ///< of the searched screen
    int m_columns = 0; ///< 0 before the first step
    uint64_t m_end = 0; ///< one past the last line of the history when the search began
    uint64_t m_next = 0; ///< one past the next line to search
    int64_t m_below = 0; ///< rows between `m_next` and `m_end`
    std::vector<SearchMatch> m_matches; ///< newest first until done; rows are relative to `m_end`
    uint64_t m_generation = 0;
};

}
