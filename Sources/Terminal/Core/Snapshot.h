#pragma once

#include "Terminal/Core/Config.h"
#include "Terminal/Core/HistoryView.h"
#include "Terminal/Core/Palette.h"
#include "Terminal/Core/Selection.h"
#include "Terminal/Graphics/Graphics.h"
#include "Terminal/Grid/Style.h"

#include <map>

namespace corvane::terminal {

enum class CursorShape : uint8_t { Block = 1, Underline = 3, Bar = 5 };

struct CursorState {
    int row = 0;
    int column = 0;
    bool visible = false;
    CursorShape shape = CursorShape::Block;
    bool blinks = false;
    bool pendingWrap = false;
};

/// A row with all data needed to draw it without the terminal.
struct ShownRow {
    /// Rows of one terminal with equal keys look the same as long as its size does not change.
    struct Key {
        uint64_t id = UINT64_MAX;
        uint64_t version = 0;
        friend bool operator==(const Key&, const Key&) = default;
    };
    Key key;
    std::vector<Cell> cells; ///< style and cluster index the lists below; trailing blanks are omitted
    std::vector<Style> styles;
    std::vector<std::u32string> clusters;
    LineSize size = LineSize::Single;
    bool continued = false;

    const Style& styleOf(Cell cell) const { return styles[cell.style()]; }
};

/// The current picture of an image.
struct ShownImage {
    uint64_t version = 0;
    size_t frame = 0;
    Bitmap bitmap;
};

/// A visible prompt whose command has ended, from the shell's marks (OSC 133).
struct ShownPrompt {
    int row; ///< of the view
    int exitCode;
};

/// The contents of a view at one moment.
struct Snapshot {
    uint64_t generation = 0;
    Size size {};
    int64_t top = 0; ///< the first row shown, as in Terminal::readRow
    size_t historyRows = 0;
    std::vector<ShownRow> rows;
    CursorState cursor;
    PaletteState palette;
    bool isReversed = false; ///< reverse video for the whole screen (DECSCNM)
    bool isAlternate = false;
    bool tracksMouse = false;
    std::optional<Selection::Range> selection;
    std::vector<ShownPrompt> prompts; ///< from bottom to top
    std::vector<PlacementView> placements; ///< rows as in Terminal::readRow
    std::map<uint32_t, ShownImage> images; ///< the images of the placements
};

/// A position in the history that stays with its text.
struct HistoryPlace {
    uint64_t line = 0;
    uint32_t offset = 0;
};

}
