#pragma once

#include "Terminal/Grid/Cell.h"

#include <cstddef>

namespace corvane::terminal {

/// The text of up to 64 cells; one bit per character.
struct PackedText {
    size_t cells = 0;
    size_t characters = 0;
    size_t bytes = 0;
    uint64_t wide = 0; ///< two columns
    uint64_t two = 0; ///< two bytes or more, and so on
    uint64_t three = 0;
    uint64_t four = 0;
    friend bool operator==(const PackedText&, const PackedText&) = default;
};

/// Consecutive characters that take `bytes` bytes of text and `width` columns each.
struct ShapeRun {
    uint8_t width;
    uint8_t bytes;
    uint16_t count;
    friend bool operator==(const ShapeRun&, const ShapeRun&) = default;
};

/// Operations on text of all scripts. None of them branches on the length or width of a character, which is
/// unpredictable where scripts change.
struct TextKernels {
    /// The widest form that the processor supports.
    static const TextKernels& instance();
    static TextKernels portable();

    static constexpr size_t most = 64; ///< bytes, characters or cells in one call
    static constexpr size_t mostRuns = most + 16;
    static constexpr size_t readAhead = 3; ///< bytes past its input that `decode` may read
    static constexpr size_t writeAhead = 64; ///< bytes past its output that `pack` may overwrite

    /// Decodes UTF-8. `starts` has a bit for the first byte of each character, including that at `text`, and one for
    /// the end of the last character. Stops at the first malformed character or control; `points` has room for `most`.
    /// Returns the number of bytes decoded.
    size_t (*decode)(const uint8_t* text, uint64_t starts, char32_t* points, size_t& count);
    /// Writes characters to cells, two for each wide one. One cell past the last may be read.
    void (*place)(Cell* cells, const char32_t* points, size_t count, uint64_t wide, StyleId style);
    /// Encodes the text of `count` cells, stopping at the first that holds a cluster.
    PackedText (*pack)(const Cell* cells, size_t count, char* to);
    /// Splits non-empty text into runs of equal width and length; returns their number. `runs` has room for `mostRuns`.
    size_t (*shapes)(const PackedText& text, ShapeRun* runs);
};

}
