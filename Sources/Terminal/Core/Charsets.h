#pragma once

#include <cstdint>

namespace corvane::terminal {

/// A set of graphic characters of 94 or 96 places.
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

/// By what designates it: the final, behind an optional intermediate; `is96` for the designators of 96-sets.
/// Ascii where it is not known.
Charset charsetOf(char intermediate, char final, bool is96);

/// Is it one of the national sets, which stand for ASCII unless the mode for them is set?
bool isNational(Charset set);

/// `code` is 0x20 to 0x7f.
char32_t translate(Charset set, uint8_t code);

/// The four designated sets and those in use.
struct Charsets {
    Charset designated[4] = { Charset::Ascii, Charset::Ascii, Charset::Latin1, Charset::Latin1 };
    /// As they were designated, for reports.
    char finals[4] = { 'B', 'B', 'A', 'A' };
    char intermediates[4] = {};
    bool are96[4] = { false, false, true, true };
    uint8_t left = 0;
    uint8_t right = 2;
    uint8_t single = 0; ///< 2 or 3 for one character

    friend bool operator==(const Charsets&, const Charsets&) = default;
};

}
