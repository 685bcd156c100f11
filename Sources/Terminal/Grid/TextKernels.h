#pragma once

#include "Terminal/Grid/Cell.h"

#include <cstddef>

namespace corvane::terminal {

/// The text of up to 64 cells; one bit for each of its characters.
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

/// So many characters in a row take `bytes` bytes of the text and `width` columns each.
struct ShapeRun {
    uint8_t width;
    uint8_t bytes;
    uint16_t count;
    friend bool operator==(const ShapeRun&, const ShapeRun&) = default;
};

/// What is done with characters of all scripts. No step depends on how long or wide one is, since that is not to be
/// foreseen where scripts change.
struct TextKernels {
    /// In the widest form that this processor has.
    static const TextKernels& instance();
    static TextKernels portable();

    static constexpr size_t most = 64; ///< bytes, characters or cells in one call
    static constexpr size_t mostRuns = most + 16;
    static constexpr size_t readAhead = 3; ///< bytes behind those that `decode` is told of, but may read
    static constexpr size_t writeAhead = 64; ///< bytes behind those that `pack` writes, which it may overwrite

    /// Decodes UTF-8. In `starts` bits are set for the first byte of each character, with that of `text` itself, and
    /// for the byte where the last one ends. Writes up to the first that is malformed or a control; `points` has room
    /// for `most`. Answers how many bytes those take.
    size_t (*decode)(const uint8_t* text, uint64_t starts, char32_t* points, size_t& count);
    /// Writes characters to cells; those that are wide take two. The cell behind the last may be read.
    void (*place)(Cell* cells, const char32_t* points, size_t count, uint64_t wide, StyleId style);
    /// Encodes the text of `count` cells, up to the first that holds a cluster.
    PackedText (*pack)(const Cell* cells, size_t count, char* to);
    /// Runs of characters that are equally wide and long, of text that is not empty; answers how many. `runs` has
    /// room for `mostRuns`.
    size_t (*shapes)(const PackedText& text, ShapeRun* runs);
};

}
