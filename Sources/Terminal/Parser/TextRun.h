#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane::terminal {

/// Characters in a row, decoded.
struct TextRun {
    static constexpr size_t maxPoints = 256;
    char32_t points[maxPoints];
    size_t count = 0;

    enum class Ascii : uint8_t { Taken, Left };
    /// Takes whole, well-formed UTF-8 characters from the front, up to a control, to ASCII where that is to be left,
    /// and to ASCII that goes on for long enough to be printed faster as it is. Answers how many bytes it took: none
    /// where the first character is cut or malformed.
    size_t decode(const uint8_t* text, size_t size, Ascii ascii);

    static constexpr size_t longAscii = 16;
};

}
