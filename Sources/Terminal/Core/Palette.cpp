#include "Terminal/Core/Palette.h"

#include "Terminal/Text/Concat.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace corvane::terminal {

namespace {

constexpr Rgb basic[16] = { 0x000000, 0xcd0000, 0x00cd00, 0xcdcd00, 0x0000ee, 0xcd00cd, 0x00cdcd, 0xe5e5e5, 0x7f7f7f,
    0xff0000, 0x00ff00, 0xffff00, 0x5c5cff, 0xff00ff, 0x00ffff, 0xffffff };

struct Named {
    std::string_view name;
    Rgb color;
};

constexpr Named names[] = {
    { "black", 0x000000 },
    { "blue", 0x0000ff },
    { "brown", 0xa52a2a },
    { "cyan", 0x00ffff },
    { "darkblue", 0x00008b },
    { "darkcyan", 0x008b8b },
    { "darkgray", 0xa9a9a9 },
    { "darkgreen", 0x006400 },
    { "darkgrey", 0xa9a9a9 },
    { "darkmagenta", 0x8b008b },
    { "darkorange", 0xff8c00 },
    { "darkred", 0x8b0000 },
    { "gold", 0xffd700 },
    { "gray", 0xbebebe },
    { "green", 0x00ff00 },
    { "grey", 0xbebebe },
    { "lightblue", 0xadd8e6 },
    { "lightgray", 0xd3d3d3 },
    { "lightgreen", 0x90ee90 },
    { "lightgrey", 0xd3d3d3 },
    { "magenta", 0xff00ff },
    { "maroon", 0xb03060 },
    { "navy", 0x000080 },
    { "navyblue", 0x000080 },
    { "orange", 0xffa500 },
    { "orchid", 0xda70d6 },
    { "pink", 0xffc0cb },
    { "purple", 0xa020f0 },
    { "red", 0xff0000 },
    { "salmon", 0xfa8072 },
    { "skyblue", 0x87ceeb },
    { "tan", 0xd2b48c },
    { "turquoise", 0x40e0d0 },
    { "violet", 0xee82ee },
    { "wheat", 0xf5deb3 },
    { "white", 0xffffff },
    { "yellow", 0xffff00 },
};

std::optional<unsigned> hex(std::string_view digits)
{
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size())
        return {};
    return value;
}

/// In "#rgb" the digits are the high ones of each channel.
std::optional<Rgb> parseHash(std::string_view digits)
{
    if (digits.size() % 3 != 0 || digits.empty() || digits.size() > 12)
        return {};
    const size_t width = digits.size() / 3;
    Rgb color = 0;
    for (size_t channel = 0; channel < 3; ++channel) {
        const auto value = hex(digits.substr(channel * width, width));
        if (!value)
            return {};
        color = color << 8 | (width == 1 ? *value << 4 : *value >> (width * 4 - 8));
    }
    return color;
}

/// "rgb:h/hh/hhhh": each channel is scaled by its own number of digits.
std::optional<Rgb> parseSlashed(std::string_view text, bool fractions)
{
    Rgb color = 0;
    for (int channel = 0; channel < 3; ++channel) {
        const size_t slash = text.find('/');
        if (slash == std::string_view::npos && channel < 2)
            return {};
        const std::string_view part = text.substr(0, slash);
        unsigned scaled = 0;
        if (fractions) {
            double value = 0;
            const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
            if (error != std::errc() || end != part.data() + part.size() || !(value >= 0 && value <= 1))
                return {};
            scaled = unsigned(std::lround(value * 255));
        } else {
            const auto value = hex(part);
            if (!value || part.size() > 4)
                return {};
            const unsigned most = (1u << (4 * part.size())) - 1;
            scaled = (*value * 255 + most / 2) / most;
        }
        color = color << 8 | scaled;
        text.remove_prefix(slash == std::string_view::npos ? text.size() : slash + 1);
    }
    return color;
}

}

Palette::Palette()
{
    std::copy_n(basic, 16, initial.indexed.begin());
    constexpr unsigned levels[6] = { 0, 95, 135, 175, 215, 255 };
    for (unsigned i = 0; i < 216; ++i)
        initial.indexed[16 + i] = levels[i / 36] << 16 | levels[i / 6 % 6] << 8 | levels[i % 6];
    for (unsigned i = 0; i < 24; ++i)
        initial.indexed[232 + i] = (8 + i * 10) * 0x010101;
    initial.special.fill(0xe5e5e5);
    initial.dynamic.fill(0xe5e5e5);
    initial.dynamic[size_t(DynamicColor::Background)] = 0;
    initial.dynamic[size_t(DynamicColor::PointerBackground)] = 0;
    initial.dynamic[size_t(DynamicColor::TekBackground)] = 0;
    initial.dynamic[size_t(DynamicColor::HighlightText)] = 0;
    current = initial;
}

std::optional<Rgb> parseColor(std::string_view text)
{
    if (text.starts_with('#'))
        return parseHash(text.substr(1));
    if (text.starts_with("rgb:"))
        return parseSlashed(text.substr(4), false);
    if (text.starts_with("rgba:"))
        return parseSlashed(text.substr(5, text.rfind('/') - 5), false);
    if (text.starts_with("rgbi:"))
        return parseSlashed(text.substr(5), true);
    std::string key;
    for (const char letter : text) {
        if (letter != ' ')
            key.push_back(letter >= 'A' && letter <= 'Z' ? char(letter + 32) : letter);
    }
    const auto found = std::ranges::lower_bound(names, std::string_view(key), {}, &Named::name);
    if (found == std::end(names) || found->name != key)
        return {};
    return found->color;
}

std::string colorSpec(Rgb color)
{
    const auto channel = [&](int shift) {
        return toHex((color >> shift & 0xff) * 257, 4);
    };
    return concat("rgb:", channel(16), '/', channel(8), '/', channel(0));
}

}
