#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane::terminal {

/// The default colour, a palette index, or 24 bits.
struct Color {
    enum class Kind : uint8_t { Default, Indexed, Rgb };

    static constexpr Color indexed(uint8_t index) { return { uint32_t(Kind::Indexed) << 24 | index }; }
    static constexpr Color rgb(uint8_t red, uint8_t green, uint8_t blue)
    {
        return { uint32_t(Kind::Rgb) << 24 | uint32_t(red) << 16 | uint32_t(green) << 8 | blue };
    }
    constexpr Kind kind() const { return Kind(bits >> 24); }
    constexpr uint8_t index() const { return bits & 0xff; }
    constexpr uint32_t rgbValue() const { return bits & 0xffffff; }
    friend constexpr bool operator==(Color, Color) = default;

    uint32_t bits = 0;
};

enum class Underline : uint8_t { None, Single, Double, Curly, Dotted, Dashed };

/// Everything about a cell's look except its text.
struct Style {
    enum Attribute : uint16_t {
        Bold = 1 << 0,
        Faint = 1 << 1,
        Italic = 1 << 2,
        Blink = 1 << 3,
        Reverse = 1 << 4,
        Conceal = 1 << 5,
        Strike = 1 << 6,
        Overline = 1 << 7,
        Protected = 1 << 8, ///< by DECSCA: skipped by selective erase
        Guarded = 1 << 9 ///< by SPA: skipped by every erase except that of rectangles
    };

    bool has(Attribute attribute) const { return attributes & attribute; }
    void set(Attribute attribute, bool on)
    {
        attributes = on ? uint16_t(attributes | attribute) : uint16_t(attributes & ~attribute);
    }
    friend bool operator==(const Style&, const Style&) = default;

    Color foreground;
    Color background;
    Color underlineColor;
    uint16_t attributes = 0;
    Underline underline = Underline::None;
    uint8_t reserved = 0;
    uint32_t link = 0; ///< index in the table of links; 0 is none
};

static_assert(sizeof(Style) == 20);

inline size_t hashOf(const Style& style)
{
    uint64_t hash = (uint64_t(style.foreground.bits) << 32 | style.background.bits) * 0x9e3779b97f4a7c15;
    hash ^= hash >> 29;
    const uint64_t rest = uint64_t(style.underlineColor.bits) << 32 ^ uint64_t(style.link) << 24
        ^ uint64_t(style.underline) << 16 ^ style.attributes;
    hash = (hash ^ rest) * 0xbf58476d1ce4e5b9;
    return size_t(hash ^ hash >> 32);
}

}
