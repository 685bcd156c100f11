#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::terminal {

/// Keys have the numbers of the Kitty protocol: a text key the code point that it types unshifted, other keys numbers
/// of its private range.
namespace keys {
constexpr char32_t tab = 9, enter = 13, escape = 27, backspace = 127;
constexpr char32_t insert = 57348, del = 57349, left = 57350, right = 57351, up = 57352, down = 57353, pageUp = 57354,
                   pageDown = 57355, home = 57356, end = 57357, capsLock = 57358, menu = 57363, f1 = 57364, f13 = 57376,
                   f35 = 57398, keypad0 = 57399, keypadDecimal = 57409, keypadDivide = 57410, keypadMultiply = 57411,
                   keypadSubtract = 57412, keypadAdd = 57413, keypadEnter = 57414, keypadEqual = 57415,
                   keypadSeparator = 57416, keypadLeft = 57417, keypadDelete = 57426, keypadBegin = 57427,
                   mediaPlay = 57428, leftShift = 57441, isoLevel5Shift = 57454;
}

enum Modifier : uint8_t {
    Shift = 1,
    Alt = 2,
    Control = 4,
    Super = 8,
    Hyper = 16,
    Meta = 32,
    CapsLock = 64,
    NumLock = 128
};

enum class KeyAction : uint8_t { Press = 1, Repeat = 2, Release = 3 };

struct KeyEvent {
    char32_t key = 0;
    uint8_t modifiers = 0; ///< a set of Modifier
    KeyAction action = KeyAction::Press;
    char32_t shifted = 0; ///< what the key types with Shift; 0 if unknown
    char32_t base = 0; ///< the key at this position of a US keyboard; 0 if it is the same
    std::string text {}; ///< the text typed, as UTF-8
};

/// "F5", "KP_9", "LEFT_SHIFT", "PAGE_UP", or U+ and hexadecimal digits.
std::optional<char32_t> keyOfName(std::string_view name);

/// "shift+alt+ctrl+super+hyper+meta+caps+num" in any order; "-" if there are none.
std::optional<uint8_t> modifiersOfName(std::string_view name);

enum class MouseAction : uint8_t { Press, Release, Move };

struct MouseEvent {
    MouseAction action = MouseAction::Press;
    /// 1 left, 2 middle, 3 right, 4 to 7 the wheel up, down, left and right, 8 to 11 additional buttons; 0 none
    int button = 0;
    int column = 0;
    int row = 0;
    uint8_t modifiers = 0;
    int pixelX = 0;
    int pixelY = 0;
};

}
