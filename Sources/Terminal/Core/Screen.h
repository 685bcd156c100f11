#pragma once

#include "Terminal/Core/Charsets.h"
#include "Terminal/Grid/Anchors.h"
#include "Terminal/Grid/Grid.h"
#include "Terminal/Grid/Scrollback.h"

#include <utility>
#include <vector>

namespace corvane::terminal {

struct SavedCursor {
    int row = 0;
    int column = 0;
    bool pendingWrap = false;
    bool origin = false;
    Style pen;
    Charsets charsets;
};

/// The flags of the Kitty keyboard protocol; each screen has its own.
struct KeyboardFlags {
    static constexpr size_t maxDepth = 32;
    int current = 0;
    std::vector<int> stack;
};

/// The primary or the alternate screen.
struct Screen {
    Screen(int columns, int rows, Scrollback* scrollback)
        : grid(columns, rows)
        , history(scrollback)
    {
    }

    Grid grid;
    Anchors anchors;
    Scrollback* history; ///< null: rows that scroll out are discarded
    SavedCursor saved;
    KeyboardFlags keyboard;
};

/// What has scrolled since the last query.
class ScrollLog {
public:
    struct Entry {
        int top;
        int bottom;
        int lines; ///< positive is up
    };

    void add(int top, int bottom, int lines)
    {
        if (!m_entries.empty()) {
            Entry& last = m_entries.back();
            if (last.top == top && last.bottom == bottom && (last.lines > 0) == (lines > 0)) {
                last.lines += lines;
                return;
            }
        }
        if (m_entries.size() < maxEntries)
            m_entries.push_back({ top, bottom, lines });
    }
    std::vector<Entry> take() { return std::exchange(m_entries, {}); }

private:
    static constexpr size_t maxEntries = 64;
    std::vector<Entry> m_entries;
};

}
