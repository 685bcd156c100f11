#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

/// 8 bits per channel: 0xrrggbb.
using Rgb = uint32_t;

/// The dynamic colours, in the order of OSC 10 to 19.
enum class DynamicColor : uint8_t {
    Foreground,
    Background,
    Cursor,
    PointerForeground,
    PointerBackground,
    TekForeground,
    TekBackground,
    Highlight,
    TekCursor,
    HighlightText,
    Count
};

/// OSC 5: the colours of bold, underlined, blinking, reversed and italic text.
constexpr int specialColors = 5;

struct PaletteState {
    std::array<Rgb, 256> indexed;
    std::array<Rgb, specialColors> special;
    std::array<Rgb, size_t(DynamicColor::Count)> dynamic;

    friend bool operator==(const PaletteState&, const PaletteState&) = default;
};

/// The current colours, including changes by the program, and the defaults.
struct Palette {
    Palette();
    PaletteState current;
    PaletteState initial;
    std::vector<PaletteState> stack; ///< XTPUSHCOLORS
    int stackTop = 0;

    static constexpr int maxStack = 10;
};

/// Accepts "#rgb" to "#rrrrggggbbbb", "rgb:h/h/h", "rgbi:f/f/f", "rgba:..." (alpha is ignored), or one of the common
/// X11 names.
std::optional<Rgb> parseColor(std::string_view text);

/// "rgb:rrrr/gggg/bbbb"
std::string colorSpec(Rgb color);

}
