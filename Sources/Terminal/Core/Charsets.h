#pragma once

#include <cstdint>

namespace corvane::terminal {

/// A set of 94 or 96 graphic characters.
enum class Charset : uint8_t {
    Ascii,
    SpecialGraphics,
    Technical,
    Latin1,
    British,
    Dutch,
    Finnish,
    French,
    FrenchCanadian,
    German,
    Italian,
    Norwegian,
    Portuguese,
    Spanish,
    Swedish,
    Swiss,
    Supplemental
};

/// The set that a designator selects: the final byte, after an optional intermediate; `is96` for designators of
/// 96-character sets. Ascii if it is unknown.
Charset charsetOf(char intermediate, char final, bool is96);

/// The national sets act as ASCII unless mode NationalSets is on.
bool isNational(Charset set);

/// `code` is 0x20 to 0x7f.
char32_t translate(Charset set, uint8_t code);

/// The four designated sets (G0 to G3), and which of them are in use.
struct Charsets {
    Charset designated[4] = { Charset::Ascii, Charset::Ascii, Charset::Latin1, Charset::Latin1 };
    /// The designators, for reports.
    char finals[4] = { 'B', 'B', 'A', 'A' };
    char intermediates[4] = {};
    bool are96[4] = { false, false, true, true };
    uint8_t left = 0;
    uint8_t right = 2;
    uint8_t single = 0; ///< 2 or 3 (a single shift) for one character

    friend bool operator==(const Charsets&, const Charsets&) = default;
};

}
