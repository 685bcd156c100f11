#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane::terminal {

/// A run of decoded characters.
struct TextRun {
    static constexpr size_t maxPoints = 256;
    char32_t points[maxPoints];
    size_t count = 0;

    enum class Ascii : uint8_t { Taken, Left };
    /// Takes complete, well-formed UTF-8 characters from the front, up to a control, to any ASCII if that is to be
    /// left, or to an ASCII run that is long enough to be printed faster as it is. Returns the number of bytes taken: 0
    /// if the first character is incomplete or malformed.
    size_t decode(const uint8_t* text, size_t size, Ascii ascii);

    static constexpr size_t longAscii = 16;
};

}
