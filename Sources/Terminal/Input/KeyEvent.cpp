#include "Terminal/Input/KeyEvent.h"

#include <algorithm>
#include <charconv>

namespace corvane::terminal {

namespace {

template <typename Number> bool parseNumber(std::string_view text, Number& value, int base)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

constexpr struct {
    std::string_view name;
    char32_t key;
} named[] = {
    { "ESCAPE", keys::escape },
    { "ENTER", keys::enter },
    { "TAB", keys::tab },
    { "BACKSPACE", keys::backspace },
    { "SPACE", ' ' },
    { "INSERT", keys::insert },
    { "DELETE", keys::del },
    { "LEFT", keys::left },
    { "RIGHT", keys::right },
    { "UP", keys::up },
    { "DOWN", keys::down },
    { "PAGE_UP", keys::pageUp },
    { "PAGE_DOWN", keys::pageDown },
    { "HOME", keys::home },
    { "END", keys::end },
};

/// The remaining keys, in numerical order.
constexpr std::string_view locks[] = { "CAPS_LOCK", "SCROLL_LOCK", "NUM_LOCK", "PRINT_SCREEN", "PAUSE", "MENU" };
constexpr std::string_view keypad[] = { "DECIMAL", "DIVIDE", "MULTIPLY", "SUBTRACT", "ADD", "ENTER", "EQUAL",
    "SEPARATOR", "LEFT", "RIGHT", "UP", "DOWN", "PAGE_UP", "PAGE_DOWN", "HOME", "END", "INSERT", "DELETE", "BEGIN" };
constexpr std::string_view media[] = { "MEDIA_PLAY", "MEDIA_PAUSE", "MEDIA_PLAY_PAUSE", "MEDIA_REVERSE", "MEDIA_STOP",
    "MEDIA_FAST_FORWARD", "MEDIA_REWIND", "MEDIA_TRACK_NEXT", "MEDIA_TRACK_PREVIOUS", "MEDIA_RECORD", "LOWER_VOLUME",
    "RAISE_VOLUME", "MUTE_VOLUME", "LEFT_SHIFT", "LEFT_CONTROL", "LEFT_ALT", "LEFT_SUPER", "LEFT_HYPER", "LEFT_META",
    "RIGHT_SHIFT", "RIGHT_CONTROL", "RIGHT_ALT", "RIGHT_SUPER", "RIGHT_HYPER", "RIGHT_META", "ISO_LEVEL3_SHIFT",
    "ISO_LEVEL5_SHIFT" };

template <size_t Count> std::optional<char32_t> placeIn(const std::string_view (&names)[Count], std::string_view name)
{
    const auto found = std::find(std::begin(names), std::end(names), name);
    if (found == std::end(names))
        return {};
    return char32_t(found - std::begin(names));
}

}

std::optional<char32_t> keyOfName(std::string_view name)
{
    if (name.starts_with("U+") || name.starts_with("u+")) {
        uint32_t point = 0;
        if (!parseNumber(name.substr(2), point, 16) || point > 0x10ffff)
            return {};
        return char32_t(point);
    }
    for (const auto& entry : named) {
        if (entry.name == name)
            return entry.key;
    }
    int number = 0;
    if (name.starts_with('F') && parseNumber(name.substr(1), number, 10) && number >= 1 && number <= 35)
        return keys::f1 + char32_t(number - 1);
    if (name.starts_with("KP_")) {
        const std::string_view rest = name.substr(3);
        if (rest.size() == 1 && rest[0] >= '0' && rest[0] <= '9')
            return keys::keypad0 + char32_t(rest[0] - '0');
        if (const auto place = placeIn(keypad, rest))
            return keys::keypadDecimal + *place;
    }
    if (const auto place = placeIn(locks, name))
        return keys::capsLock + *place;
    if (const auto place = placeIn(media, name))
        return keys::mediaPlay + *place;
    return {};
}

std::optional<uint8_t> modifiersOfName(std::string_view name)
{
    constexpr std::string_view names[] = { "shift", "alt", "ctrl", "super", "hyper", "meta", "caps", "num" };
    uint8_t modifiers = 0;
    if (name == "-")
        return modifiers;
    while (!name.empty()) {
        const size_t end = std::min(name.find('+'), name.size());
        const auto place = placeIn(names, name.substr(0, end));
        if (!place)
            return {};
        modifiers = uint8_t(modifiers | 1 << *place);
        name.remove_prefix(std::min(end + 1, name.size()));
    }
    return modifiers;
}

}
